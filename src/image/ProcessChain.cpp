#include "image/ProcessChain.h"

#include "image/ImageProcess.h"

#include <cstring>

void RunProcessChain(
    const uchar* source, uchar* target, unsigned width, unsigned height, const ProcessSwitches& switches)
{
    if (source == nullptr || target == nullptr || width == 0 || height == 0)
        return;
    std::memmove(target, source, std::size_t(width) * height * 3);
    if (switches.flip)
        FlipVertical(target, width, height);
    if (switches.mirror)
        MirrorHorizontal(target, width, height);
    if (switches.gray)
        Gray(target, width, height);
    if (switches.negative)
        Negative(target, width, height);
    if (switches.binary)
        Binary(target, width, height, switches.binaryLevel);
    if (switches.emboss)
        Emboss(target, width, height);
    if (switches.sharpen)
        Sharpen(target, width, height);
    if (switches.rgb)
        ColorOffset(target, width, height, switches.red, switches.green, switches.blue);
}
