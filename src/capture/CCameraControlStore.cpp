#include "capture/CCameraControlStore.h"

#include "capture/CameraSources.h"
#include "platform/AppPaths.h"
#include "platform/PrivateProfile.h"

#include <algorithm>

namespace {

// Section and key names may not hold the characters that end them.
QString IniName(QString text)
{
    return text.replace(QLatin1Char('['), QLatin1Char('('))
        .replace(QLatin1Char(']'), QLatin1Char(')'))
        .replace(QLatin1Char('='), QLatin1Char('-'));
}

QString ControlKey(const CameraControl& control)
{
    return IniName(control.name);
}

} // namespace

CCameraControlStore::CCameraControlStore(QString file)
    : m_file(std::move(file))
{
    if (m_file.isEmpty()) {
        const QString folder = CurrentAppPaths().m_dataFolder;
        if (!folder.isEmpty())
            m_file = folder + QStringLiteral("CameraControls.ini");
    }
}

QString CCameraControlStore::CameraKey(const QString& name, GstDevice* device)
{
    const CameraSource* source = CameraSourceOf(device);
    const QString id = source && source->stableId ? source->stableId(device) : QString();
    return IniName(id.isEmpty() ? name : name + QStringLiteral(" #") + id);
}

void CCameraControlStore::Remember(const QString& camera, const CameraControl& control, int value) const
{
    if (m_file.isEmpty() || control.type == CameraControl::Type::Button || control.readOnly)
        return;
    WritePrivateProfileString(camera, ControlKey(control), QString::number(value), m_file);
}

bool CCameraControlStore::Stored(const QString& camera, const CameraControl& control, int* value) const
{
    if (m_file.isEmpty())
        return false;
    const QString text = GetPrivateProfileString(camera, ControlKey(control), QString(), m_file);
    bool ok = false;
    const int v = text.toInt(&ok);
    if (ok && value)
        *value = v;
    return ok;
}

int CCameraControlStore::ApplyTo(const QString& camera, CCameraControls& controls) const
{
    if (m_file.isEmpty() || !controls.IsAvailable())
        return 0;
    QList<CameraControl> list = controls.Query();
    std::stable_sort(list.begin(), list.end(), [](const CameraControl& a, const CameraControl& b) {
        const auto rank
            = [](const CameraControl& c) { return c.type == CameraControl::Type::Integer ? 1 : 0; };
        return rank(a) < rank(b);
    });
    int applied = 0;
    for (const CameraControl& c : list) {
        int value = 0;
        if (c.type == CameraControl::Type::Button || c.readOnly || !Stored(camera, c, &value))
            continue;
        value = std::clamp(value, c.minimum, c.maximum);
        if (value != c.value && controls.Set(c, value))
            ++applied;
    }
    return applied;
}
