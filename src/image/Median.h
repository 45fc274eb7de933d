#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

// The middle value (the upper one of an even count), 0 for none: the robust
// centre and, over absolute deviations, the robust spread of the edge
// locator's and the graticule detector's noise estimates.
inline double Median(std::vector<double> values)
{
    if (values.empty())
        return 0.0;
    const auto mid = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), mid, values.end());
    return *mid;
}
