#include "platform/TickCount.h"

#include <gtest/gtest.h>
#include <thread>

TEST(TickCount, AdvancesInMilliseconds)
{
    const std::uint32_t before = GetTickCount();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const std::uint32_t elapsed = GetTickCount() - before; // unsigned arithmetic survives the wrap
    EXPECT_GE(elapsed, 20u);
    EXPECT_LT(elapsed, 5000u);
}
