#include "platform/KeyLockState.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

void WriteLed(const QString& dir, const QByteArray& brightness)
{
    ASSERT_TRUE(QDir().mkpath(dir));
    QFile file(dir + QStringLiteral("/brightness"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(brightness);
}

} // namespace

// Laid out as the kernel does: one entry per keyboard LED, linked into the
// device tree, with the brightness as text and a newline.
TEST(KeyLockState, AnyKeyboardLightingTheLedTurnsTheLockOn)
{
    QTemporaryDir devices;
    QTemporaryDir leds;
    const QString root = leds.path();
    WriteLed(root + QStringLiteral("/input3::capslock"), "1\n");
    WriteLed(root + QStringLiteral("/input3::numlock"), "0\n");
    WriteLed(root + QStringLiteral("/input3::scrolllock"), "garbage\n");
    // A second keyboard whose Num Lock LED is lit, reached through a link.
    WriteLed(devices.filePath(QStringLiteral("kbd2")), "1\n");
    ASSERT_TRUE(
        QFile::link(devices.filePath(QStringLiteral("kbd2")), root + QStringLiteral("/input9::numlock")));
    // Not a lock LED, however bright.
    WriteLed(root + QStringLiteral("/phy0-led"), "255\n");

    EXPECT_TRUE(GetKeyLockState(KeyLock::Caps, root));
    EXPECT_TRUE(GetKeyLockState(KeyLock::Num, root));
    EXPECT_FALSE(GetKeyLockState(KeyLock::Scroll, root)) << "unreadable brightness counts as off";

    QFile::remove(root + QStringLiteral("/input9::numlock"));
    EXPECT_FALSE(GetKeyLockState(KeyLock::Num, root));
}

TEST(KeyLockState, NoLedsMeansEveryLockIsOff)
{
    const QString missing = QStringLiteral("/nonexistent/leds");
    for (KeyLock lock : { KeyLock::Caps, KeyLock::Num, KeyLock::Scroll })
        EXPECT_FALSE(GetKeyLockState(lock, missing));
}
