#include "capture/CCameraControls.h"

#include "capture/CameraSources.h"

#include <QCoreApplication>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

// The simulated camera's controls: property, shown name.
constexpr std::pair<const char*, const char*> kSimProperties[] = {
    { "brightness", "Brightness" },
    { "contrast", "Contrast" },
    { "saturation", "Saturation" },
    { "vignetting", "Vignetting" },
    { "noise", "Noise" },
    { "drift", "Drift" },
    { "focus", "Focus" },
    // As V4L2 names a camera's white balance gains.
    { "red-balance", "Red Balance" },
    { "blue-balance", "Blue Balance" },
};

int Ioctl(int fd, unsigned long request, void* arg)
{
    int r;
    do {
        r = ioctl(fd, request, arg);
    } while (r == -1 && errno == EINTR);
    return r;
}

QString DevicePath(GstElement* source, GstDevice* device)
{
    QString path = DeviceProperty(device, "device.path");
    if (path.isEmpty() && source && g_object_class_find_property(G_OBJECT_GET_CLASS(source), "device")) {
        gchar* p = nullptr;
        g_object_get(source, "device", &p, nullptr);
        path = QString::fromUtf8(p);
        g_free(p);
    }
    return path;
}

// The bound element tells its source even without the device; a camera of no
// known source is tried as a device node.
CameraControlAccess AccessOf(GstElement* source, GstDevice* device)
{
    const CameraSource* row = CameraSourceOfElement(source);
    if (!row)
        row = CameraSourceOf(device);
    return row ? row->controls : CameraControlAccess::DeviceNode;
}

} // namespace

CCameraControls::CCameraControls(GstElement* source, GstDevice* device)
    : m_source(source ? GST_ELEMENT(gst_object_ref(source)) : nullptr)
    , m_access(AccessOf(source, device))
{
    if (m_access != CameraControlAccess::DeviceNode)
        return;
    const QString path = DevicePath(source, device);
    if (path.isEmpty()) {
        m_error = QCoreApplication::translate("CCameraControls", "The camera has no device node.");
        return;
    }
    // Controls may be read and set beside the stream that another open runs.
    m_fd = ::open(QFile::encodeName(path).constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (m_fd < 0)
        m_error = QStringLiteral("%1: %2").arg(path, QString::fromLocal8Bit(std::strerror(errno)));
}

CCameraControls::~CCameraControls()
{
    if (m_fd >= 0)
        ::close(m_fd);
    if (m_source)
        gst_object_unref(m_source);
}

bool CCameraControls::IsAvailable() const
{
    return m_fd >= 0 || HasPropertyControls();
}

bool CCameraControls::HasPropertyControls() const
{
    return m_source && m_access == CameraControlAccess::ElementProperties;
}

QList<CameraControl> CCameraControls::Query() const
{
    if (m_fd >= 0)
        return QueryV4l2();
    if (HasPropertyControls())
        return QueryProperties();
    return {};
}

QList<CameraControl> CCameraControls::QueryProperties() const
{
    QList<CameraControl> out;
    GObjectClass* klass = G_OBJECT_GET_CLASS(m_source);
    gboolean balance = TRUE;
    if (g_object_class_find_property(klass, "balance-controls"))
        g_object_get(m_source, "balance-controls", &balance, nullptr);
    for (const auto& [property, name] : kSimProperties) {
        GParamSpec* param = g_object_class_find_property(klass, property);
        if (!param || (!balance && QByteArray(property).endsWith("-balance")))
            continue;
        // The focus knob is there only while the camera shows its relief.
        if (std::strcmp(property, "focus") == 0) {
            gboolean depth = FALSE;
            g_object_get(m_source, "depth", &depth, nullptr);
            if (!depth)
                continue;
        }
        CameraControl c;
        c.name = QString::fromLatin1(name);
        c.property = property;
        if (G_IS_PARAM_SPEC_INT(param)) {
            auto* s = G_PARAM_SPEC_INT(param);
            c.type = CameraControl::Type::Integer;
            c.minimum = s->minimum;
            c.maximum = s->maximum;
            c.defaultValue = s->default_value;
            g_object_get(m_source, property, &c.value, nullptr);
        } else if (G_IS_PARAM_SPEC_BOOLEAN(param)) {
            c.type = CameraControl::Type::Boolean;
            c.maximum = 1;
            c.defaultValue = G_PARAM_SPEC_BOOLEAN(param)->default_value ? 1 : 0;
            gboolean on = FALSE;
            g_object_get(m_source, property, &on, nullptr);
            c.value = on ? 1 : 0;
        } else {
            continue;
        }
        out.push_back(c);
    }
    return out;
}

QList<CameraControl> CCameraControls::QueryV4l2() const
{
    QList<CameraControl> out;
    v4l2_queryctrl q {};
    q.id = V4L2_CTRL_FLAG_NEXT_CTRL;
    while (Ioctl(m_fd, VIDIOC_QUERYCTRL, &q) == 0) {
        const quint32 id = q.id;
        q.id = id | V4L2_CTRL_FLAG_NEXT_CTRL;
        if (q.flags & V4L2_CTRL_FLAG_DISABLED)
            continue;
        CameraControl c;
        c.name = QString::fromUtf8(reinterpret_cast<const char*>(q.name));
        c.v4l2Id = id;
        c.minimum = q.minimum;
        c.maximum = q.maximum;
        c.step = std::max<int>(1, q.step);
        c.defaultValue = q.default_value;
        c.inactive = q.flags & (V4L2_CTRL_FLAG_INACTIVE | V4L2_CTRL_FLAG_GRABBED);
        c.readOnly = q.flags & V4L2_CTRL_FLAG_READ_ONLY;
        switch (q.type) {
        case V4L2_CTRL_TYPE_INTEGER:
            c.type = CameraControl::Type::Integer;
            break;
        case V4L2_CTRL_TYPE_BOOLEAN:
            c.type = CameraControl::Type::Boolean;
            break;
        case V4L2_CTRL_TYPE_BUTTON:
            c.type = CameraControl::Type::Button;
            break;
        case V4L2_CTRL_TYPE_MENU:
        case V4L2_CTRL_TYPE_INTEGER_MENU: {
            c.type = CameraControl::Type::Menu;
            for (int i = q.minimum; i <= q.maximum; ++i) {
                v4l2_querymenu m {};
                m.id = id;
                m.index = quint32(i);
                if (Ioctl(m_fd, VIDIOC_QUERYMENU, &m) != 0)
                    continue;
                c.menuItems << (q.type == V4L2_CTRL_TYPE_MENU
                        ? QString::fromUtf8(reinterpret_cast<const char*>(m.name))
                        : QString::number(m.value));
                c.menuValues << i;
            }
            break;
        }
        default:
            continue; // classes, strings, compound controls
        }
        if (c.type != CameraControl::Type::Button) {
            v4l2_control v {};
            v.id = id;
            if (Ioctl(m_fd, VIDIOC_G_CTRL, &v) == 0)
                c.value = v.value;
            else
                c.value = c.defaultValue;
        }
        out.push_back(c);
    }
    return out;
}

bool CCameraControls::Set(const CameraControl& control, int value)
{
    if (m_fd >= 0 && control.v4l2Id) {
        v4l2_control v {};
        v.id = control.v4l2Id;
        v.value = value;
        if (Ioctl(m_fd, VIDIOC_S_CTRL, &v) != 0) {
            m_error
                = QStringLiteral("%1: %2").arg(control.name, QString::fromLocal8Bit(std::strerror(errno)));
            return false;
        }
        return true;
    }
    if (m_source && !control.property.isEmpty()) {
        if (control.type == CameraControl::Type::Boolean)
            g_object_set(m_source, control.property.constData(), value ? TRUE : FALSE, nullptr);
        else
            g_object_set(m_source, control.property.constData(), value, nullptr);
        return true;
    }
    return false;
}
