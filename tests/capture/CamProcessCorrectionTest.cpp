#include "capture/CCamProcess.h"
#include "image/FlatField.h"
#include "image/FrameHistogram.h"
#include "image/ImageProcess.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace {

constexpr unsigned kWidth = 45; // padded rows
constexpr unsigned kHeight = 38; // more than two bands of the sweep

std::vector<uchar> Frame(unsigned width, unsigned height, unsigned seed)
{
    std::vector<uchar> bits(DibStride(width) * height, 0);
    for (unsigned y = 0; y < height; ++y)
        for (unsigned x = 0; x < width * 3; ++x)
            bits[y * DibStride(width) + x] = uchar((x * 7 + y * 11 + seed * 5 + (x * y) % 13) % 256);
    return bits;
}

std::shared_ptr<const FlatField> Field(unsigned width, unsigned height)
{
    // A blank field brighter in the middle, so every pixel has its own gain.
    std::vector<uchar> blank(DibStride(width) * height, 0);
    for (unsigned y = 0; y < height; ++y)
        for (unsigned x = 0; x < width * 3; ++x)
            blank[y * DibStride(width) + x] = uchar(140 + (x / 3 * (width - x / 3) + y * (height - y)) % 90);
    const uchar* blanks[] = { blank.data() };
    return std::make_shared<const FlatField>(FlatField::FromFrames(blanks, nullptr, width, height));
}

// Switches that read rows in reverse and rows around each row.
ProcessSwitches Busy()
{
    ProcessSwitches s;
    s.flip = true;
    s.sharpen = true;
    s.rgb = true;
    s.red = 9;
    return s;
}

std::vector<uchar> Live(CCamProcess& process, const std::vector<uchar>& src, unsigned width, unsigned height)
{
    const std::ptrdiff_t stride = std::ptrdiff_t(DibStride(width));
    std::vector<uchar> out(src.size(), 0);
    process.ProcessFrame(src.data(), stride, out.data(), stride, width, height);
    return out;
}

std::vector<uchar> Expected(
    std::vector<uchar> src, unsigned width, unsigned height, const ProcessSwitches& s, const FlatField* flat)
{
    if (flat)
        flat->Apply(src.data(), width, height);
    const std::ptrdiff_t stride = std::ptrdiff_t(DibStride(width));
    std::vector<uchar> out(src.size(), 0);
    FusedProcess(src.data(), stride, out.data(), stride, width, height, s, nullptr);
    return out;
}

} // namespace

// The live element corrects the camera's frame before any operation: the
// same bytes as the still path's whole-picture correction, then the chain.
TEST(CamProcessFlatField, CorrectsTheFrameBeforeTheOperations)
{
    CCamProcess process;
    for (const ProcessOp op : { ProcessOp::Flip, ProcessOp::Sharpen, ProcessOp::Rgb })
        process.SetOperation(op, Busy());
    const auto field = Field(kWidth, kHeight);
    ASSERT_FALSE(field->IsNull());
    process.SetFlatField(field);
    const auto src = Frame(kWidth, kHeight, 1);
    EXPECT_EQ(Live(process, src, kWidth, kHeight), Expected(src, kWidth, kHeight, Busy(), field.get()));
}

// Without a correction, with one made for another size, or with processing
// off, every frame comes out byte for byte as without the feature.
TEST(CamProcessFlatField, OffLeavesFramesAsTheyWere)
{
    const auto src = Frame(kWidth, kHeight, 2);
    const auto plain = Expected(src, kWidth, kHeight, Busy(), nullptr);
    CCamProcess process;
    for (const ProcessOp op : { ProcessOp::Flip, ProcessOp::Sharpen, ProcessOp::Rgb })
        process.SetOperation(op, Busy());
    EXPECT_EQ(Live(process, src, kWidth, kHeight), plain) << "none set";
    process.SetFlatField(Field(kWidth + 3, kHeight));
    EXPECT_EQ(Live(process, src, kWidth, kHeight), plain) << "another width";
    process.SetFlatField(Field(kWidth, kHeight - 1));
    EXPECT_EQ(Live(process, src, kWidth, kHeight), plain) << "another height";
    process.SetFlatField(Field(kWidth, kHeight));
    process.SetProcessEnable(0);
    EXPECT_EQ(Live(process, src, kWidth, kHeight), Expected(src, kWidth, kHeight, {}, nullptr))
        << "processing off";
    process.SetProcessEnable(1);
    process.SetFlatField(nullptr);
    EXPECT_EQ(Live(process, src, kWidth, kHeight), plain) << "switched off again";
}

namespace {

// The histogram counted the slow way over every sample pixel of a picture.
FrameHistogram Reference(const std::vector<uchar>& bits, unsigned width, unsigned height)
{
    FrameHistogram h;
    for (unsigned y = 0; y < height; y += 8)
        for (unsigned x = 0; x < width; x += 4) {
            const uchar* p = &bits[y * DibStride(width) + 3 * x];
            ++h.blue[p[0]];
            ++h.green[p[1]];
            ++h.red[p[2]];
            ++h.luma[(77 * p[2] + 150 * p[1] + 29 * p[0] + 128) / 256];
            ++h.samples;
            h.overexposed += std::max({ p[0], p[1], p[2] }) == 255;
            h.underexposed += std::min({ p[0], p[1], p[2] }) == 0;
        }
    return h;
}

void ExpectSame(const FrameHistogram& a, const FrameHistogram& b)
{
    EXPECT_EQ(a.samples, b.samples);
    EXPECT_EQ(a.overexposed, b.overexposed);
    EXPECT_EQ(a.underexposed, b.underexposed);
    EXPECT_EQ(a.blue, b.blue);
    EXPECT_EQ(a.green, b.green);
    EXPECT_EQ(a.red, b.red);
    EXPECT_EQ(a.luma, b.luma);
}

} // namespace

// Counted on the frame as the camera gives it after the flat field, each
// sample pixel once, whatever the operations read: the flip reverses the
// rows, sharpen and emboss read rows twice where bands meet.
TEST(CamProcessHistogram, CountsEachSamplePixelOnceAfterTheFlatField)
{
    // Read bottom to top, band edges fall on sample rows; the last band is short.
    constexpr unsigned kTall = 73;
    auto src = Frame(kWidth, kTall, 3);
    // Clipped pixels of both kinds, some on sample rows.
    for (unsigned y = 0; y < kTall; y += 5)
        src[y * DibStride(kWidth) + 3 * (y % kWidth)] = 255;
    for (unsigned y = 0; y < kTall; y += 3)
        src[y * DibStride(kWidth) + 3 * ((y * 3) % kWidth) + 1] = 0;
    CCamProcess process;
    FrameHistogram h;
    EXPECT_FALSE(process.LastHistogram(&h)) << "off by default";
    Live(process, src, kWidth, kTall);
    EXPECT_FALSE(process.LastHistogram(&h));

    process.KeepHistograms(true);
    ProcessSwitches s = Busy();
    s.emboss = true;
    for (const ProcessOp op : { ProcessOp::Flip, ProcessOp::Emboss, ProcessOp::Sharpen, ProcessOp::Rgb })
        process.SetOperation(op, s);
    const auto out = Live(process, src, kWidth, kTall);
    EXPECT_EQ(out, Expected(src, kWidth, kTall, s, nullptr)) << "counting leaves the frame alone";
    ASSERT_TRUE(process.LastHistogram(&h));
    ExpectSame(h, Reference(src, kWidth, kTall));
    EXPECT_GT(h.overexposed, 0u);
    EXPECT_GT(h.underexposed, 0u);

    const auto field = Field(kWidth, kTall);
    process.SetFlatField(field);
    Live(process, src, kWidth, kTall);
    ASSERT_TRUE(process.LastHistogram(&h));
    auto corrected = src;
    field->Apply(corrected.data(), kWidth, kTall);
    ExpectSame(h, Reference(corrected, kWidth, kTall));

    process.KeepHistograms(false);
    EXPECT_FALSE(process.LastHistogram(&h));
}

// A blank field averages the frames as the camera gives them, before the
// flat field and the operations, and starts over when the size changes.
TEST(CamProcessBlank, AveragesRawFrames)
{
    CCamProcess process;
    process.SetOperation(ProcessOp::Negative, [] {
        ProcessSwitches s;
        s.negative = true;
        return s;
    }());
    process.SetFlatField(Field(kWidth, kHeight));
    const auto frameOf = [](unsigned width, unsigned height, int level) {
        std::vector<uchar> bits(DibStride(width) * height, 0);
        for (unsigned y = 0; y < height; ++y)
            for (unsigned x = 0; x < width * 3; ++x)
                bits[y * DibStride(width) + x] = uchar(level + (y == 0 ? 40 : 0) + x % 3);
        return bits;
    };
    process.CaptureBlank(3);
    Live(process, frameOf(kWidth + 2, kHeight, 10), kWidth + 2, kHeight); // another size: dropped
    Live(process, frameOf(kWidth, kHeight, 100), kWidth, kHeight);
    Live(process, frameOf(kWidth, kHeight, 103), kWidth, kHeight);
    EXPECT_TRUE(process.CapturedBlank().isNull()) << "two of three frames";
    Live(process, frameOf(kWidth, kHeight, 107), kWidth, kHeight);
    const QImage blank = process.CapturedBlank();
    ASSERT_EQ(blank.size(), QSize(kWidth, kHeight));
    // (100 + 103 + 107) / 3 = 103.3; the bottom row, brighter, is the last line.
    EXPECT_EQ(blank.constScanLine(0)[0], 103);
    EXPECT_EQ(blank.constScanLine(0)[2], 105);
    EXPECT_EQ(blank.constScanLine(kHeight - 1)[0], 143);
    Live(process, frameOf(kWidth, kHeight, 200), kWidth, kHeight);
    EXPECT_EQ(process.CapturedBlank().constScanLine(0)[0], 103) << "later frames left out";
    process.CaptureBlank(0);
    EXPECT_TRUE(process.CapturedBlank().isNull());
}
