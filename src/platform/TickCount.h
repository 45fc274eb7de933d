#pragma once

#include <cstdint>

// Milliseconds of a monotonic clock, truncated to 32 bits like the platform
// tick count the shapes use as their identity. Wraps after about 49.7 days.
std::uint32_t GetTickCount();
