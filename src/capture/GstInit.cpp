#include "capture/GstInit.h"

#include "capture/CamProcessElement.h"
#include "capture/SimDeviceProvider.h"
#include "platform/DebugLog.h"

#include <gst/gst.h>

#include <mutex>

bool EnsureGStreamer()
{
    static std::once_flag once;
    static bool ok = false;
    std::call_once(once, [] {
        GError* error = nullptr;
        ok = gst_init_check(nullptr, nullptr, &error);
        if (!ok) {
            qCWarning(lcCapture) << "GStreamer failed to start:" << (error ? error->message : "");
            g_clear_error(&error);
            return;
        }
        RegisterCamProcessElement();
        RegisterSimDeviceProvider();
    });
    return ok;
}
