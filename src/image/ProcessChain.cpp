#include "image/ProcessChain.h"

#include "image/ProcessOperations.h"

#include <cstring>

void RunProcessChain(
    const uchar* source, uchar* target, unsigned width, unsigned height, const ProcessSwitches& switches)
{
    if (source == nullptr || target == nullptr || width == 0 || height == 0)
        return;
    std::memmove(target, source, std::size_t(width) * height * 3);
    for (const ProcessOperation& op : kProcessOperations)
        if (switches.*op.on)
            op.still(target, width, height, switches);
}
