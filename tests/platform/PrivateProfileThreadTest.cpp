#include "platform/PrivateProfile.h"

#include <QTemporaryDir>

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

// Writers of different keys lose nothing, and a reader never sees a half-written
// file: a key nobody writes is there at every read.
TEST(PrivateProfileThreads, WritersKeepEachOthersKeysAndReadersSeeWholeFiles)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("Setting.ini"));
    ASSERT_TRUE(WritePrivateProfileString("Fixed", "stay", "here", file));

    constexpr int kWriters = 4;
    constexpr int kKeys = 25;
    std::atomic<bool> done { false };
    std::atomic<int> badReads { 0 };
    std::thread reader([&] {
        while (!done) {
            if (GetPrivateProfileString("Fixed", "stay", "gone", file) != "here")
                ++badReads;
        }
    });
    std::vector<std::thread> writers;
    for (int w = 0; w < kWriters; ++w) {
        writers.emplace_back([&, w] {
            for (int i = 0; i < kKeys; ++i)
                WritePrivateProfileString(
                    "Shared", QStringLiteral("w%1_%2").arg(w).arg(i), QString::number(i), file);
        });
    }
    for (std::thread& t : writers)
        t.join();
    done = true;
    reader.join();

    EXPECT_EQ(badReads, 0);
    for (int w = 0; w < kWriters; ++w) {
        for (int i = 0; i < kKeys; ++i)
            EXPECT_EQ(GetPrivateProfileInt("Shared", QStringLiteral("w%1_%2").arg(w).arg(i), -1, file),
                unsigned(i));
    }
}
