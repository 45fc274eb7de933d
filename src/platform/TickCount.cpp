#include "platform/TickCount.h"

#include <chrono>

std::uint32_t GetTickCount()
{
    using namespace std::chrono;
    const auto ms = duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
    return static_cast<std::uint32_t>(ms);
}
