#pragma once

// The processing operations in the order a picture goes through them. Each
// OPERATION(Name, name) gives ProcessOp::Name and the switch
// ProcessSwitches::name; the operation's row in ProcessOperations.h, in the
// same order, says everything else about it.
#define OCULIX_PROCESS_OPERATIONS(OPERATION)                                                                 \
    OPERATION(Flip, flip)                                                                                    \
    OPERATION(Mirror, mirror)                                                                                \
    OPERATION(Gray, gray)                                                                                    \
    OPERATION(Negative, negative)                                                                            \
    OPERATION(Binary, binary)                                                                                \
    OPERATION(Emboss, emboss)                                                                                \
    OPERATION(Sharpen, sharpen)                                                                              \
    OPERATION(Rgb, rgb)

enum class ProcessOp {
#define OCULIX_PROCESS_ENUM(Name, name) Name,
    OCULIX_PROCESS_OPERATIONS(OCULIX_PROCESS_ENUM)
#undef OCULIX_PROCESS_ENUM
};

#define OCULIX_PROCESS_COUNT(Name, name) +1
inline constexpr int kProcessOpCount = 0 OCULIX_PROCESS_OPERATIONS(OCULIX_PROCESS_COUNT);
#undef OCULIX_PROCESS_COUNT

// The processing switches of a picture, and the parameters of the operations
// that take some.
struct ProcessSwitches
{
#define OCULIX_PROCESS_SWITCH(Name, name) bool name = false;
    OCULIX_PROCESS_OPERATIONS(OCULIX_PROCESS_SWITCH)
#undef OCULIX_PROCESS_SWITCH
    int binaryLevel = 128;
    int red = 0;
    int green = 0;
    int blue = 0;
};
