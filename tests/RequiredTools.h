#pragma once

#include <QProcess>
#include <QStandardPaths>
#include <QString>

#include <gtest/gtest.h>

// Some tests judge our files with outside tools (ffprobe, exiftool, Pillow) or
// need a locale with a decimal comma. A machine without one skips them, but
// under OCULIX_REQUIRE_TOOLS=1 (./dev test sets it) a missing tool fails the
// test: there a skip would quietly drop a whole kind of check.
inline bool ToolsRequired()
{
    return qEnvironmentVariable("OCULIX_REQUIRE_TOOLS") == QLatin1String("1");
}

inline bool HaveProgram(const QString& name)
{
    return !QStandardPaths::findExecutable(name).isEmpty();
}

// The system's python3 with Pillow (python3-pil), not one from a user's path.
inline bool HavePillow()
{
    static const bool have = [] {
        const QString python = QStandardPaths::findExecutable("python3", { "/usr/bin", "/bin" });
        return !python.isEmpty() && QProcess::execute(python, { "-c", "import PIL.Image" }) == 0;
    }();
    return have;
}

// Skips the test when the tool is missing, or fails it when tools are required.
#define REQUIRE_TOOL(available, what)                                                                        \
    do {                                                                                                     \
        if (!(available)) {                                                                                  \
            if (ToolsRequired())                                                                             \
                FAIL() << what << " is missing, and OCULIX_REQUIRE_TOOLS=1 requires it";                     \
            GTEST_SKIP() << what << " is not installed";                                                     \
        }                                                                                                    \
    } while (false)
