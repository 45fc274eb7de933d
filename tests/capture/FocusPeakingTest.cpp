#include "image/FocusPeaking.h"

#include "capture/CCamProcess.h"
#include "image/ImageProcess.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr unsigned kPeakWidth = 61; // padded rows
constexpr unsigned kPeakHeight = 40; // more than two bands of the sweep
constexpr QRgb kMark = qRgb(255, 0, 255);

// Gray, with a vertical step up at x = 15 that is sharp (one pixel) and one
// down from x = 39 to 51, spread over twelve pixels as out of focus.
std::vector<uchar> TwoEdges()
{
    std::vector<uchar> bits(DibStride(kPeakWidth) * kPeakHeight, 0);
    for (unsigned y = 0; y < kPeakHeight; ++y)
        for (unsigned x = 0; x < kPeakWidth; ++x) {
            const int v = x < 15 ? 60 : x < 39 ? 200 : x >= 51 ? 60 : 200 - int(x - 39) * 140 / 12;
            for (unsigned c = 0; c < 3; ++c)
                bits[y * DibStride(kPeakWidth) + 3 * x + c] = uchar(v);
        }
    return bits;
}

std::vector<uchar> Processed(CCamProcess& process, const std::vector<uchar>& src)
{
    const auto stride = std::ptrdiff_t(DibStride(kPeakWidth));
    std::vector<uchar> out(src.size(), 0);
    process.ProcessFrame(src.data(), stride, out.data(), stride, kPeakWidth, kPeakHeight);
    return out;
}

bool Marked(const std::vector<uchar>& bits, unsigned x, unsigned y)
{
    const uchar* p = bits.data() + y * DibStride(kPeakWidth) + 3 * x;
    return p[0] == qBlue(kMark) && p[1] == qGreen(kMark) && p[2] == qRed(kMark);
}

} // namespace

// The sharp edge is marked and the soft one is not; the sharpness figure
// drops as the picture blurs.
TEST(FocusPeaking, MarksTheSharpEdgeOnlyAndMeasuresSharpness)
{
    std::vector<uchar> bits = TwoEdges();
    const auto stride = std::ptrdiff_t(DibStride(kPeakWidth));
    const double sharp = FocusPeaking::Mark(bits.data(), stride, kPeakWidth, kPeakHeight, kMark);
    for (unsigned y = 1; y + 1 < kPeakHeight; ++y) {
        EXPECT_TRUE(Marked(bits, 15, y) && Marked(bits, 16, y)) << y;
        EXPECT_FALSE(Marked(bits, 12, y) || Marked(bits, 19, y)) << y;
        for (unsigned x = 30; x < kPeakWidth; ++x)
            EXPECT_FALSE(Marked(bits, x, y)) << x << "," << y;
    }
    // The border rows have no neighbours to judge by.
    EXPECT_FALSE(Marked(bits, 15, 0));
    EXPECT_FALSE(Marked(bits, 15, kPeakHeight - 1));
    // 140 at the sharp step, about 2 x 140 / 12 along the soft one, at every
    // other pixel of a row.
    EXPECT_NEAR(sharp, std::sqrt((2 * 140.0 * 140.0 + 12 * 23.3 * 23.3) / (kPeakWidth - 1)), 1.5);

    // Out of focus: each pixel the mean of five across.
    const std::vector<uchar> original = TwoEdges();
    std::vector<uchar> soft = original;
    for (unsigned y = 0; y < kPeakHeight; ++y)
        for (unsigned x = 2; x + 2 < kPeakWidth; ++x)
            for (unsigned c = 0; c < 3; ++c) {
                int sum = 0;
                for (unsigned k = x - 2; k <= x + 2; ++k)
                    sum += original[y * DibStride(kPeakWidth) + 3 * k + c];
                soft[y * DibStride(kPeakWidth) + 3 * x + c] = uchar(sum / 5);
            }
    EXPECT_LT(FocusPeaking::Mark(soft.data(), stride, kPeakWidth, kPeakHeight, kMark), 0.8 * sharp);
    EXPECT_EQ(FocusPeaking::Mark(bits.data(), stride, kPeakWidth, 2, kMark), 0.0);
}

// Off, the element's frames are what they were before it was ever on; on,
// it marks under the overlay, whose shapes stay on top and are not taken
// for edges.
TEST(FocusPeaking, LiveElementMarksUnderTheOverlayAndOffChangesNothing)
{
    const std::vector<uchar> src = TwoEdges();
    CCamProcess process;
    const std::vector<uchar> plain = Processed(process, src);
    EXPECT_LT(process.LastSharpness(), 0.0) << "nothing measured while off";

    process.SetFocusPeaking(true, kMark);
    const std::vector<uchar> peaked = Processed(process, src);
    EXPECT_TRUE(Marked(peaked, 15, 20));
    EXPECT_GT(process.LastSharpness(), 0.0);
    process.SetFocusPeaking(false, kMark);
    EXPECT_EQ(Processed(process, src), plain);

    // An overlay with a vertical line at x = 40 across the soft edge, and a
    // transparent rest.
    std::vector<uchar> overlay(src.size(), kOverlayKey);
    for (unsigned y = 0; y < kPeakHeight; ++y)
        for (unsigned c = 0; c < 3; ++c)
            overlay[y * DibStride(kPeakWidth) + 3 * 40 + c] = 0;
    uchar* published = overlay.data();
    process.SetOverlaySize(kPeakWidth, kPeakHeight);
    process.SetOverlay(1, &published);
    const std::vector<uchar> withOverlay = Processed(process, src);
    process.SetFocusPeaking(true, kMark);
    const std::vector<uchar> both = Processed(process, src);
    for (unsigned y = 1; y + 1 < kPeakHeight; ++y) {
        EXPECT_TRUE(Marked(both, 15, y));
        EXPECT_EQ(both[y * DibStride(kPeakWidth) + 3 * 40], 0) << "the shape stays on top";
        EXPECT_FALSE(Marked(both, 39, y) || Marked(both, 41, y)) << "the shape's line is no edge in focus";
    }
    process.SetFocusPeaking(false, kMark);
    EXPECT_EQ(Processed(process, src), withOverlay);
    process.SetOverlay(0, nullptr);
}

// The stack's coverage tints the picture where its map says, the map's top
// on the picture's top (the element's rows run bottom-up); taken away, the
// frames are as before.
TEST(FocusPeaking, CoverageTintsItsPartOfThePictureAndGoesAway)
{
    const std::vector<uchar> src = TwoEdges();
    CCamProcess process;
    const std::vector<uchar> plain = Processed(process, src);
    // 4 x 2 blocks: the top row's left half covered.
    QImage coverage(4, 2, QImage::Format_Grayscale8);
    coverage.fill(0);
    coverage.scanLine(0)[0] = coverage.scanLine(0)[1] = 255;
    process.SetCoverage(coverage, qRgb(0, 0, 255));
    const std::vector<uchar> tinted = Processed(process, src);
    const auto at = [&](const std::vector<uchar>& bits, unsigned x, unsigned pictureY) {
        return bits.data() + (kPeakHeight - 1 - pictureY) * DibStride(kPeakWidth) + 3 * x;
    };
    // Picture row 5 is in the top half, row 30 in the bottom one.
    EXPECT_EQ(at(tinted, 5, 5)[0], (3 * at(plain, 5, 5)[0] + 255 + 2) / 4) << "blue a quarter of the way";
    EXPECT_EQ(at(tinted, 5, 5)[2], (3 * at(plain, 5, 5)[2] + 2) / 4);
    EXPECT_EQ(at(tinted, 5, 30)[0], at(plain, 5, 30)[0]);
    EXPECT_EQ(at(tinted, 45, 5)[0], at(plain, 45, 5)[0]) << "the right half is not covered";
    process.SetCoverage(QImage(), 0);
    EXPECT_EQ(Processed(process, src), plain);
}
