#pragma once

// A random 24-bit picture with padded rows, for tests that compare two ways of
// processing it byte for byte.
#include "image/ImageProcess.h"

#include <cstring>
#include <random>
#include <vector>

inline std::vector<uchar> RandomPicture(unsigned width, unsigned height, std::mt19937& rng)
{
    std::vector<uchar> bits(DibStride(width) * height);
    for (uchar& b : bits)
        b = uchar(rng());
    // Some flat areas, so that emboss and sharpen meet equal neighbours too.
    for (std::size_t i = 0; i + 40 < bits.size(); i += 89)
        std::memset(&bits[i], bits[i], 27);
    return bits;
}

inline std::vector<uchar> RandomPicture(unsigned width, unsigned height, unsigned seed)
{
    std::mt19937 rng(seed);
    return RandomPicture(width, height, rng);
}
