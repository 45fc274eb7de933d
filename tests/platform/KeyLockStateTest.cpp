#include "platform/KeyLockState.h"

#include "TestFiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// Laid out as the kernel does: one entry per keyboard LED, linked into the
// device tree, with the brightness as text and a newline.
TEST(KeyLockState, AnyKeyboardLightingTheLedTurnsTheLockOn)
{
    QTemporaryDir devices, leds;
    const QString root = leds.path();
    const auto led = [](const QString& dir, const QByteArray& brightness) {
        ASSERT_TRUE(QDir().mkpath(dir) && WriteAll(dir + QStringLiteral("/brightness"), brightness));
    };
    led(root + QStringLiteral("/input3::capslock"), "1\n");
    led(root + QStringLiteral("/input3::numlock"), "0\n");
    led(root + QStringLiteral("/input3::scrolllock"), "garbage\n");
    // A second keyboard whose Num Lock LED is lit, reached through a link.
    led(devices.filePath(QStringLiteral("kbd2")), "1\n");
    ASSERT_TRUE(
        QFile::link(devices.filePath(QStringLiteral("kbd2")), root + QStringLiteral("/input9::numlock")));
    led(root + QStringLiteral("/phy0-led"), "255\n"); // not a lock LED, however bright

    EXPECT_TRUE(GetKeyLockState(KeyLock::Caps, root));
    EXPECT_TRUE(GetKeyLockState(KeyLock::Num, root));
    EXPECT_FALSE(GetKeyLockState(KeyLock::Scroll, root)) << "unreadable brightness counts as off";

    QFile::remove(root + QStringLiteral("/input9::numlock"));
    EXPECT_FALSE(GetKeyLockState(KeyLock::Num, root));
    for (KeyLock lock : { KeyLock::Caps, KeyLock::Num, KeyLock::Scroll })
        EXPECT_FALSE(GetKeyLockState(lock, QStringLiteral("/nonexistent/leds")))
            << "no LEDs: every lock is off";
}
