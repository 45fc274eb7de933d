#pragma once

#include "image/ProcessSwitches.h"

#include <QtGlobal>

// Rebuilds a processed picture from its unprocessed copy, so operations never
// accumulate: copies width * height * 3 bytes from source to target, then
// applies the switched-on operations in the order of ProcessOperations.h.
// Both buffers are 24-bit bottom-up with rows padded to 4 bytes. The byte
// count ignores the row padding on purpose: for padded widths the tail of
// target keeps its previous bytes. Does nothing for a null buffer or an empty size.
void RunProcessChain(
    const uchar* source, uchar* target, unsigned width, unsigned height, const ProcessSwitches& switches);
