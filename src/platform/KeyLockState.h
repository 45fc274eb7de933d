#pragma once

#include <QString>

enum class KeyLock { Caps, Num, Scroll };

// The toggle state of a lock key, as the platform's key state call answers it
// for the status bar's indicators. Linux keeps no such state for a window
// program to ask, but the kernel shows every keyboard's lock LEDs under
// /sys/class/leds ("input3::capslock/brightness" and so on); a lock is on when
// any keyboard lights it. No readable LED means off, never an error.
bool GetKeyLockState(KeyLock lock, const QString& ledRoot = QStringLiteral("/sys/class/leds"));
