#include "capture/LiveWhiteBalance.h"

#include "capture/CCameraControlStore.h"
#include "capture/CCameraControls.h"
#include "capture/CXCapGraph.h"
#include "capture/GrabPicture.h"
#include "capture/ILiveDocument.h"
#include "image/FCObjImage.h"
#include "image/ProcessSwitches.h"
#include "image/WhiteBalance.h"

#include <algorithm>
#include <cmath>
#include <linux/videodev2.h>
#include <optional>

namespace {

// The RGB dialog's sliders stop here.
constexpr int kMaxOffset = 63;
// The grabbed frame has the rectangle's outline and handles in it: the
// region is taken this far inside them.
constexpr int kOutline = 4;

bool IsControl(const CameraControl& c, quint32 v4l2Id, const char* property)
{
    return (c.v4l2Id != 0 && c.v4l2Id == v4l2Id) || (!c.property.isEmpty() && c.property == property);
}

struct CameraGains
{
    CameraControl red;
    CameraControl blue;
};

// The camera's own red and blue gains, when it has them and they can be set
// now: its automatic white balance, which would undo them, is switched off.
std::optional<CameraGains> FindCameraGains(CCameraControls& controls)
{
    QList<CameraControl> list = controls.Query();
    for (const CameraControl& c : list)
        if (c.v4l2Id == V4L2_CID_AUTO_WHITE_BALANCE && c.value != 0 && !c.readOnly) {
            controls.Set(c, 0);
            list = controls.Query();
            break;
        }
    const auto find = [&](quint32 id, const char* property) -> const CameraControl* {
        for (const CameraControl& c : list)
            if (IsControl(c, id, property) && c.type == CameraControl::Type::Integer && !c.inactive
                && !c.readOnly && c.maximum > c.minimum)
                return &c;
        return nullptr;
    };
    const CameraControl* red = find(V4L2_CID_RED_BALANCE, "red-balance");
    const CameraControl* blue = find(V4L2_CID_BLUE_BALANCE, "blue-balance");
    if (!red || !blue)
        return std::nullopt;
    return CameraGains { *red, *blue };
}

// A gain scaled by ratio, on the control's steps and within its range;
// reached turns false when the range stopped it.
int ScaledGain(const CameraControl& c, double ratio, bool& reached)
{
    const double wanted = std::max(c.value, 1) * ratio;
    const int step = std::max(1, c.step);
    const long long stepped = std::llround((wanted - c.minimum) / step) * step + c.minimum;
    const int value = int(std::clamp<long long>(stepped, c.minimum, c.maximum));
    if (value != stepped)
        reached = false;
    return value;
}

// Through the camera: red and blue brought to green's level. The means were
// measured after the element's offsets, which are taken off again and then
// switched off, or they would tint the balanced picture once more.
std::optional<LiveWhiteBalance> BalanceThroughCamera(ILiveDocument& document, const ChannelMeans& measured)
{
    CXCapGraph& graph = document.GetGraph();
    if (!graph.DeviceElement())
        return std::nullopt;
    CCameraControls controls(graph.DeviceElement(), graph.BoundDevice());
    const std::optional<CameraGains> gains = FindCameraGains(controls);
    if (!gains)
        return std::nullopt;
    ProcessSwitches& s = document.LiveSwitches();
    ChannelMeans raw = measured;
    if (s.rgb) {
        raw.red -= s.red;
        raw.green -= s.green;
        raw.blue -= s.blue;
    }
    if (raw.red < 1 || raw.green < 1 || raw.blue < 1)
        return std::nullopt;
    bool reached = true;
    const int red = ScaledGain(gains->red, raw.green / raw.red, reached);
    const int blue = ScaledGain(gains->blue, raw.green / raw.blue, reached);
    if (!controls.Set(gains->red, red) || !controls.Set(gains->blue, blue))
        return std::nullopt;
    // Kept as the Properties dialog keeps a change, for the camera's next start.
    const QString camera = CCameraControlStore::CameraKey(graph.DeviceName(), graph.BoundDevice());
    const CCameraControlStore store;
    store.Remember(camera, gains->red, red);
    store.Remember(camera, gains->blue, blue);
    if (s.rgb) {
        s.rgb = false;
        s.red = s.green = s.blue = 0;
        graph.SetRgbGain(0, 0, 0, 0);
    }
    return reached ? LiveWhiteBalance::Done : LiveWhiteBalance::Partial;
}

} // namespace

LiveWhiteBalance BalanceLiveRegion(ILiveDocument& document, const QRect& drawn)
{
    const QRect region = drawn.normalized().adjusted(kOutline, kOutline, -kOutline, -kOutline);
    if (region.width() < 2 || region.height() < 2)
        return LiveWhiteBalance::TooSmall;
    FCObjImage frame;
    if (!GrabPicture(document.GetGraph(), frame))
        return LiveWhiteBalance::NoPicture;
    const auto means
        = RegionMeans(frame.GetMemStart(), unsigned(frame.Width()), unsigned(frame.Height()), region);
    if (!means)
        return LiveWhiteBalance::Outside;
    if (const auto throughCamera = BalanceThroughCamera(document, *means))
        return *throughCamera;
    ProcessSwitches& s = document.LiveSwitches();
    const bool reached = SetOffsetsToGray(s, *means);
    document.GetGraph().SetRgbGain(1, s.red, s.green, s.blue);
    return reached ? LiveWhiteBalance::Done : LiveWhiteBalance::Partial;
}

bool SetOffsetsToGray(ProcessSwitches& s, const ChannelMeans& means)
{
    const ChannelOffsets current
        = s.rgb ? ChannelOffsets { s.blue, s.green, s.red, true } : ChannelOffsets {};
    const ChannelOffsets offsets = OffsetsToGray(means, current, kMaxOffset);
    s.rgb = true;
    s.red = offsets.red;
    s.green = offsets.green;
    s.blue = offsets.blue;
    return offsets.reached;
}
