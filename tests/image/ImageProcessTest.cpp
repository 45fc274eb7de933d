#include "image/ImageProcess.h"

#include "image/ProcessChain.h"

#include <QCoreApplication>
#include <QProcess>

#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>
#include <tuple>
#include <vector>

// The fast kernels are checked against the plain per-pixel definitions below,
// written as directly as possible (second buffers where the definition has
// them, float tables, unsigned arithmetic).

namespace {

using Bytes = std::vector<uchar>;
using Plain = std::function<void(Bytes&, unsigned, unsigned)>;

Bytes Noise(unsigned width, unsigned height, unsigned seed)
{
    Bytes b(DibStride(width) * height);
    std::mt19937 rng(seed);
    for (auto& v : b)
        v = uchar(rng());
    return b;
}

// Running float sums of 0.11 (blue), 0.3 (green) and 0.3 (red) per step,
// added red first.
struct FloatGray
{
    float table[3][256];
    FloatGray()
    {
        float sum[3] = {};
        for (int i = 0; i < 256; ++i)
            for (int c = 0; c < 3; ++c) {
                table[c][i] = sum[c];
                sum[c] += c == 0 ? 0.11f : 0.3f;
            }
    }
    int Of(const uchar* p) const { return int(table[2][p[2]] + table[1][p[1]] + table[0][p[0]]); }
};

const FloatGray kGray;

void EachPixel(Bytes& b, unsigned w, unsigned h, const std::function<void(uchar*)>& f)
{
    for (unsigned y = 0; y < h; ++y)
        for (unsigned x = 0; x < w; ++x)
            f(&b[y * DibStride(w) + 3 * x]);
}

void PlainFlip(Bytes& b, unsigned w, unsigned h)
{
    const std::size_t s = DibStride(w);
    Bytes copy(b.size());
    for (unsigned i = 0; i < h; ++i)
        std::memcpy(&copy[i * s], &b[(h - 1 - i) * s], s);
    b = copy;
}

void PlainMirror(Bytes& b, unsigned w, unsigned h)
{
    const std::size_t s = DibStride(w);
    Bytes out(b.size(), 0);
    for (unsigned y = 0; y < h; ++y)
        for (unsigned x = 0; x < w; ++x)
            for (unsigned c = 0; c < 3; ++c)
                out[y * s + 3 * x + c] = b[y * s + (s - 3) - 3 * x + c];
    b = out;
}

void PlainGray(Bytes& b, unsigned w, unsigned h)
{
    EachPixel(b, w, h, [](uchar* p) { p[0] = p[1] = p[2] = uchar(kGray.Of(p)); });
}

void PlainBinary(Bytes& b, unsigned w, unsigned h, int threshold)
{
    EachPixel(b, w, h,
        [=](uchar* p) { p[0] = p[1] = p[2] = unsigned(kGray.Of(p)) < unsigned(threshold) ? 0 : 255; });
}

void PlainNegative(Bytes& b, unsigned w, unsigned h)
{
    EachPixel(b, w, h, [](uchar* p) { p[0] = 255 - p[0], p[1] = 255 - p[1], p[2] = 255 - p[2]; });
}

void PlainEmboss(Bytes& b, unsigned w, unsigned h)
{
    const std::size_t s = DibStride(w);
    for (unsigned y = 0; y + 1 < h; ++y) {
        for (unsigned x = 0; x + 1 < w; ++x)
            for (unsigned c = 0; c < 3; ++c) {
                unsigned v
                    = unsigned(b[y * s + 3 * x + c]) - unsigned(b[(y + 1) * s + 3 * (x + 1) + c]) + 128u;
                b[y * s + 3 * x + c] = uchar(v > 255 ? 255 : v);
            }
        for (unsigned c = 0; c < 3; ++c)
            b[y * s + 3 * (w - 1) + c] = 128;
    }
    std::memset(&b[(h - 1) * s], 128, s);
}

void PlainSharpen(Bytes& b, unsigned w, unsigned h)
{
    const std::size_t s = DibStride(w);
    const Bytes copy = b;
    for (unsigned y = 1; y + 1 < h; ++y)
        for (unsigned x = 1; x + 1 < w; ++x)
            for (unsigned c = 0; c < 3; ++c) {
                const auto at = [&](unsigned xx, unsigned yy) { return int(copy[yy * s + 3 * xx + c]); };
                int v = 5 * at(x, y) - at(x - 1, y) - at(x + 1, y) - at(x, y - 1) - at(x, y + 1);
                b[y * s + 3 * x + c] = uchar(v < 0 ? 0 : v > 255 ? 255 : v);
            }
}

void PlainColorOffset(Bytes& b, unsigned w, unsigned h, int red, int green, int blue)
{
    EachPixel(b, w, h, [=](uchar* p) {
        const int add[3] = { blue, green, red };
        for (int c = 0; c < 3; ++c)
            p[c] = p[c] + add[c] < 256 ? uchar(p[c] + add[c]) : 255;
    });
}

struct Op
{
    std::string name;
    std::function<int(uchar*, unsigned, unsigned)> fast;
    Plain plain;
};

// Every operation, with thresholds and gains on both sides of each boundary.
std::vector<Op> Ops()
{
    std::vector<Op> ops = { { "flip", FlipVertical, PlainFlip }, { "mirror", MirrorHorizontal, PlainMirror },
        { "gray", Gray, PlainGray }, { "negative", Negative, PlainNegative },
        { "emboss", Emboss, PlainEmboss },
        { "sharpen", [](uchar* b, unsigned w, unsigned h) { return Sharpen(b, w, h), 0; }, PlainSharpen } };
    for (int t : { -1, 0, 1, 57, 100, 128, 181, 182, 255, 256 })
        ops.push_back({ "binary " + std::to_string(t),
            [t](uchar* b, unsigned w, unsigned h) { return Binary(b, w, h, t); },
            [t](Bytes& b, unsigned w, unsigned h) { PlainBinary(b, w, h, t); } });
    for (auto [r, g, b] :
        { std::tuple { 20, 40, 63 }, { 0, 0, 1 }, { 255, 0, 7 }, { -30, 5, 0 }, { 300, -1000, 2 } })
        ops.push_back({ "offset " + std::to_string(r),
            [=](uchar* p, unsigned w, unsigned h) { return ColorOffset(p, w, h, r, g, b); },
            [=](Bytes& p, unsigned w, unsigned h) { PlainColorOffset(p, w, h, r, g, b); } });
    return ops;
}

} // namespace

// Widths around the vector block sizes, with and without row padding; widths
// and heights of 1 and 2 leave nothing for sharpen to do.
TEST(ImageProcess, EveryOperationMatchesItsPlainDefinitionIncludingPadding)
{
    for (const Op& op : Ops()) {
        unsigned seed = 1;
        for (unsigned w : { 1, 2, 3, 4, 5, 7, 15, 16, 17, 21, 22, 23, 32, 33, 47, 48, 49, 64, 65, 97, 385 })
            for (unsigned h : { 1, 2, 3, 4, 7 }) {
                Bytes expected = Noise(w, h, seed++), actual = expected;
                op.plain(expected, w, h);
                ASSERT_EQ(op.fast(actual.data(), w, h), 0) << op.name;
                ASSERT_EQ(actual, expected) << op.name << " " << w << "x" << h;
            }
    }
}

// All 2^24 colours, one red value at a time: the integer model of the float
// gray must agree everywhere. A proof of arithmetic, not of memory use (the
// test above runs the same kernels over every edge), so the plain build
// alone runs it; the compiler, not a setting, tells a sanitized build.
TEST(ImageProcess, GrayAndBinaryAgreeWithTheFloatTablesForEveryColour)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "every colour is checked by the plain build";
#endif
    const unsigned w = 256, h = 256; // blue by column, green by row; stride has no padding
    const int thresholds[] = { 0, 1, 100, 181 }; // 0: gray, else binary at t
    std::size_t wrong[std::size(thresholds)] = {};
    Bytes all(std::size_t(w) * 3 * h), out;
    for (unsigned red = 0; red < 256; ++red) {
        for (std::size_t i = 0; i < std::size_t(w) * h; ++i)
            all[3 * i] = uchar(i), all[3 * i + 1] = uchar(i >> 8), all[3 * i + 2] = uchar(red);
        for (std::size_t k = 0; k < std::size(thresholds); ++k) {
            const int t = thresholds[k];
            out = all;
            ASSERT_EQ(t ? Binary(out.data(), w, h, t) : Gray(out.data(), w, h), 0);
            for (std::size_t i = 0; i < out.size(); i += 3) {
                const int gray = kGray.Of(&all[i]);
                const uchar want = t == 0 ? uchar(gray) : gray < t ? 0 : 255;
                wrong[k] += out[i] != want || out[i + 1] != want || out[i + 2] != want;
            }
        }
    }
    for (std::size_t k = 0; k < std::size(thresholds); ++k)
        EXPECT_EQ(wrong[k], 0u) << "threshold " << thresholds[k];
}

// The kernels exist once per instruction set; run the checks above again on
// the narrower ones this machine also has.
TEST(ImageProcess, NarrowerInstructionSetsGiveTheSameBytes)
{
    if (qEnvironmentVariableIsSet("OCULIX_IMAGE_ISA"))
        GTEST_SKIP() << "already running on a capped instruction set";
    for (const char* isa : { "baseline", "ssse3" }) {
        QProcess child;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("OCULIX_IMAGE_ISA", isa);
        child.setProcessEnvironment(env);
        child.setProcessChannelMode(QProcess::MergedChannels);
        child.start(QCoreApplication::applicationFilePath(),
            { "--gtest_filter=ImageProcess.EveryOperation*:ImageProcess.GrayAndBinary*" });
        ASSERT_TRUE(child.waitForFinished(240000)) << isa;
        EXPECT_EQ(child.exitCode(), 0) << isa << "\n" << child.readAll().toStdString();
    }
}

TEST(ImageProcess, BadArgumentsReportMinusOneAndTouchNothing)
{
    Bytes b = Noise(5, 3, 9);
    const Bytes before = b;
    for (const Op& op : Ops()) {
        const int want = op.name == "sharpen" ? 0 : -1; // Sharpen reports nothing: it must only not write
        for (auto [w, h] : { std::pair { 0u, 3u }, { 5u, 0u }, { 0u, 0u } })
            EXPECT_EQ(op.fast(b.data(), w, h), want) << op.name;
        EXPECT_EQ(op.fast(nullptr, 5, 3), want) << op.name;
    }
    EXPECT_EQ(ColorOffset(b.data(), 5, 3, 0, 0, 0), -1) << "zero gains are a no-op that reports -1";
    EXPECT_EQ(b, before);
}

// Pins the plain definitions themselves where they are least obvious.
TEST(ImageProcess, KnownValues)
{
    Bytes g = { 255, 255, 255, 10, 20, 30, 0xAA, 0xBB }; // 2 x 1, two padding bytes
    Gray(g.data(), 2, 1);
    EXPECT_EQ(g, (Bytes { 181, 181, 181, 16, 16, 16, 0xAA, 0xBB })); // weights sum to 0.71; 9 + 6 + 1.1

    // Mirror of a 3-pixel row (stride 12): the first pixel comes from the padding.
    Bytes m = { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12 };
    MirrorHorizontal(m.data(), 3, 1);
    EXPECT_EQ(m, (Bytes { 10, 11, 12, 7, 8, 9, 4, 5, 6, 0, 0, 0 }));

    // Emboss: a lower-right neighbour brighter by more than 128 wraps to white.
    Bytes e = { 10, 100, 200, 0, 0, 0, 0, 0, 0, 0, 0, 250, 50, 70, 0, 0 };
    Emboss(e.data(), 2, 2);
    // 10-250, 100-50, 200-70 (+128); the last column and the whole last row, padding included, are 128.
    EXPECT_EQ(e, (Bytes { 255, 178, 255, 128, 128, 128, 0, 0, 128, 128, 128, 128, 128, 128, 128, 128 }));
}

TEST(ProcessChain, CopiesWithoutPaddingThenAppliesTheSwitchesInOrder)
{
    const unsigned w = 7, h = 5; // stride 24, 3 padding bytes per row
    const Bytes source = Noise(w, h, 77);
    const auto check = [&](const ProcessSwitches& switches, const std::vector<Plain>& steps) {
        Bytes target(source.size(), 0xEE), expected = target;
        std::memcpy(expected.data(), source.data(), w * h * 3); // padding ignored: the tail keeps 0xEE
        for (const Plain& step : steps)
            step(expected, w, h);
        RunProcessChain(source.data(), target.data(), w, h, switches);
        EXPECT_EQ(target, expected) << steps.size() << " steps";
    };
    ProcessSwitches none;
    none.binaryLevel = 60;
    none.red = 3;
    none.blue = 63;
    ProcessSwitches zeroGains;
    zeroGains.rgb = true;
    check(none, {});
    check(zeroGains, {});

    // Each switch alone, then all together in their fixed order.
    const std::pair<bool ProcessSwitches::*, Plain> steps[] = { { &ProcessSwitches::flip, PlainFlip },
        { &ProcessSwitches::mirror, PlainMirror }, { &ProcessSwitches::gray, PlainGray },
        { &ProcessSwitches::negative, PlainNegative },
        { &ProcessSwitches::binary, [](Bytes& b, unsigned w, unsigned h) { PlainBinary(b, w, h, 60); } },
        { &ProcessSwitches::emboss, PlainEmboss }, { &ProcessSwitches::sharpen, PlainSharpen },
        { &ProcessSwitches::rgb,
            [](Bytes& b, unsigned w, unsigned h) { PlainColorOffset(b, w, h, 3, 0, 63); } } };
    ProcessSwitches all = none;
    std::vector<Plain> allSteps;
    for (const auto& [flag, plain] : steps) {
        ProcessSwitches one = none;
        one.*flag = all.*flag = true;
        check(one, { plain });
        allSteps.push_back(plain);
    }
    check(all, allSteps);

    Bytes target = source;
    RunProcessChain(nullptr, target.data(), w, h, all); // nothing to do, no crash
    RunProcessChain(source.data(), nullptr, w, h, all);
    EXPECT_EQ(target, source);
}
