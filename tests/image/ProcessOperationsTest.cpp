#include "image/ProcessOperations.h"

#include "RandomPicture.h"
#include "image/FusedProcess.h"
#include "image/ProcessChain.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

// Every parameter somewhere within its bounds.
ProcessSwitches RandomParameters(std::mt19937& rng)
{
    ProcessSwitches s;
    for (const ProcessOperation& op : kProcessOperations)
        for (const ProcessParameter& p : op.parameters)
            s.*p.value = std::uniform_int_distribution(op.syntax.low, op.syntax.high)(rng);
    return s;
}

} // namespace

// The live sweep runs each operation's band kernel on bands of rows with the
// extra rows its row says it reads; the result must be the still kernels' on
// the whole picture, for each operation alone and for every pair, on odd
// widths and on heights on both sides of the band's.
TEST(ProcessOperations, BandKernelsGiveTheStillBytesAloneAndInPairs)
{
    std::mt19937 rng(19);
    const unsigned sizes[][2]
        = { { 1, 1 }, { 3, 2 }, { 5, 3 }, { 7, 16 }, { 9, 17 }, { 11, 34 }, { 13, 47 }, { 33, 5 } };
    for (const auto& [w, h] : sizes) {
        const std::vector<uchar> picture = RandomPicture(w, h, rng);
        const auto stride = std::ptrdiff_t(DibStride(w));
        for (const ProcessOperation& first : kProcessOperations)
            for (const ProcessOperation& second : kProcessOperations) {
                if (second.op < first.op)
                    continue;
                ProcessSwitches s = RandomParameters(rng);
                s.*first.on = s.*second.on = true;
                std::vector<uchar> still = picture;
                RunProcessChain(picture.data(), still.data(), w, h, s);
                std::vector<uchar> fused(picture.size(), 0xEE);
                FusedProcess(picture.data(), stride, fused.data(), stride, w, h, s, nullptr);
                ASSERT_TRUE(fused == still) << w << "x" << h << " " << first.name << " + " << second.name;
            }
    }
}
