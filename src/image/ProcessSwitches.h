#pragma once

// The processing switches of a picture, applied in the still-picture order:
// vertical flip, horizontal mirror, gray, negative, binary, emboss, sharpen,
// colour offset.
struct ProcessSwitches
{
    bool flip = false;
    bool mirror = false;
    bool gray = false;
    bool negative = false;
    bool binary = false;
    int binaryLevel = 128;
    bool emboss = false;
    bool sharpen = false;
    bool rgb = false;
    int red = 0;
    int green = 0;
    int blue = 0;
};
