#include "capture/CCamProcess.h"
#include "image/FlatField.h"
#include "image/ImageProcess.h"

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
