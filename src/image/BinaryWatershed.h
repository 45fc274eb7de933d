#pragma once

#include <cstdint>
#include <vector>

// Splits touching round particles of a binary mask (rows packed, nonzero is
// particle) along one-pixel lines of background, as ImageJ's binary
// "Watershed": the distance of each particle pixel to the background is
// flooded from its maxima, a maximum counting only when it stands more than
// half a pixel above the pass to any higher one. The lines keep the parts
// apart for 8-connectivity. Returns how many pixels became background.
int SplitTouchingParticles(std::vector<std::uint8_t>& mask, int width, int height);
