#include "image/ImageProcess.h"

#include "image/ProcessChain.h"

#include <QCoreApplication>
#include <QProcess>
#include <QProcessEnvironment>

#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <tuple>
#include <vector>

// The fast kernels are checked against the plain per-pixel definitions below,
// written as directly as possible (second buffers where the definition has
// them, float tables, unsigned arithmetic).

namespace {

using Bytes = std::vector<uchar>;

std::size_t StrideOf(unsigned width)
{
    return ((std::size_t(width) * 24 + 31) / 32) * 4;
}

Bytes Noise(unsigned width, unsigned height, unsigned seed)
{
    Bytes b(StrideOf(width) * height);
    std::mt19937 rng(seed);
    for (auto& v : b)
        v = uchar(rng());
    return b;
}

struct PlainTables
{
    float red[256];
    float green[256];
    float blue[256];
    PlainTables()
    {
        float r = 0, g = 0, b = 0;
        for (int i = 0; i < 256; ++i) {
            red[i] = r;
            green[i] = g;
            blue[i] = b;
            r += 0.3f;
            g += 0.3f;
            b += 0.11f;
        }
    }
    int GrayOf(const uchar* px) const { return int(red[px[2]] + green[px[1]] + blue[px[0]]); }
};

const PlainTables kPlain;

void PlainFlip(Bytes& b, unsigned w, unsigned h)
{
    const std::size_t s = StrideOf(w);
    Bytes copy(b.size());
    for (unsigned i = 0; i < h; ++i)
        std::memcpy(&copy[i * s], &b[(h - 1 - i) * s], s);
    b = copy;
}

void PlainMirror(Bytes& b, unsigned w, unsigned h)
{
    const std::size_t s = StrideOf(w);
    Bytes out(b.size(), 0);
    for (unsigned y = 0; y < h; ++y)
        for (unsigned x = 0; x < w; ++x)
            for (unsigned c = 0; c < 3; ++c)
                out[y * s + 3 * x + c] = b[y * s + (s - 3) - 3 * x + c];
    b = out;
}

void PlainGray(Bytes& b, unsigned w, unsigned h)
{
    const std::size_t s = StrideOf(w);
    for (unsigned y = 0; y < h; ++y)
        for (unsigned x = 0; x < w; ++x) {
            uchar* p = &b[y * s + 3 * x];
            p[0] = p[1] = p[2] = uchar(kPlain.GrayOf(p));
        }
}

void PlainBinary(Bytes& b, unsigned w, unsigned h, int threshold)
{
    const std::size_t s = StrideOf(w);
    for (unsigned y = 0; y < h; ++y)
        for (unsigned x = 0; x < w; ++x) {
            uchar* p = &b[y * s + 3 * x];
            p[0] = p[1] = p[2] = unsigned(kPlain.GrayOf(p)) < unsigned(threshold) ? 0 : 255;
        }
}

void PlainNegative(Bytes& b, unsigned w, unsigned h)
{
    const std::size_t s = StrideOf(w);
    for (unsigned y = 0; y < h; ++y)
        for (unsigned i = 0; i < 3 * w; ++i)
            b[y * s + i] = uchar(255 - b[y * s + i]);
}

void PlainEmboss(Bytes& b, unsigned w, unsigned h)
{
    const std::size_t s = StrideOf(w);
    for (unsigned y = 0; y + 1 < h; ++y) {
        for (unsigned x = 0; x + 1 < w; ++x)
            for (unsigned c = 0; c < 3; ++c) {
                unsigned v
                    = unsigned(b[y * s + 3 * x + c]) - unsigned(b[(y + 1) * s + 3 * (x + 1) + c]) + 128u;
                if (v > 255)
                    v = 255;
                b[y * s + 3 * x + c] = uchar(v);
            }
        for (unsigned c = 0; c < 3; ++c)
            b[y * s + 3 * (w - 1) + c] = 128;
    }
    std::memset(&b[(h - 1) * s], 128, s);
}

void PlainSharpen(Bytes& b, unsigned w, unsigned h)
{
    const std::size_t s = StrideOf(w);
    const Bytes copy = b;
    if (h <= 2)
        return;
    for (unsigned y = 1; y + 1 < h; ++y)
        for (unsigned x = 1; x + 1 < w; ++x)
            for (unsigned c = 0; c < 3; ++c) {
                const auto at = [&](unsigned xx, unsigned yy) { return int(copy[yy * s + 3 * xx + c]); };
                int v = 5 * at(x, y) - at(x - 1, y) - at(x + 1, y) - at(x, y - 1) - at(x, y + 1);
                v = v < 0 ? 0 : v > 255 ? 255 : v;
                b[y * s + 3 * x + c] = uchar(v);
            }
}

void PlainColorOffset(Bytes& b, unsigned w, unsigned h, int red, int green, int blue)
{
    const std::size_t s = StrideOf(w);
    const int add[3] = { blue, green, red };
    for (unsigned y = 0; y < h; ++y)
        for (unsigned x = 0; x < w; ++x)
            for (unsigned c = 0; c < 3; ++c) {
                const int v = b[y * s + 3 * x + c] + add[c];
                b[y * s + 3 * x + c] = v < 256 ? uchar(v) : 255;
            }
}

// Widths around the vector block sizes, with and without row padding.
const unsigned kWidths[] = { 1, 2, 3, 4, 5, 7, 15, 16, 17, 21, 22, 23, 32, 33, 47, 48, 49, 64, 65, 97, 385 };
const unsigned kHeights[] = { 1, 2, 3, 4, 7 };

template <typename Fast, typename Plain> void ExpectSameBytes(const char* name, Fast fast, Plain plain)
{
    unsigned seed = 1;
    for (unsigned w : kWidths)
        for (unsigned h : kHeights) {
            Bytes expected = Noise(w, h, seed++);
            Bytes actual = expected;
            plain(expected, w, h);
            fast(actual.data(), w, h);
            ASSERT_EQ(actual, expected) << name << " " << w << "x" << h;
        }
}

} // namespace

TEST(ImageProcess, EveryOperationMatchesItsPlainDefinitionIncludingPadding)
{
    ExpectSameBytes(
        "flip", [](uchar* b, unsigned w, unsigned h) { EXPECT_EQ(FlipVertical(b, w, h), 0); }, PlainFlip);
    ExpectSameBytes(
        "mirror", [](uchar* b, unsigned w, unsigned h) { EXPECT_EQ(MirrorHorizontal(b, w, h), 0); },
        PlainMirror);
    ExpectSameBytes(
        "gray", [](uchar* b, unsigned w, unsigned h) { EXPECT_EQ(Gray(b, w, h), 0); }, PlainGray);
    ExpectSameBytes(
        "negative", [](uchar* b, unsigned w, unsigned h) { EXPECT_EQ(Negative(b, w, h), 0); }, PlainNegative);
    for (int t : { 1, 57, 100, 128, 181, 182, 255 })
        ExpectSameBytes(
            "binary", [t](uchar* b, unsigned w, unsigned h) { EXPECT_EQ(Binary(b, w, h, t), 0); },
            [t](Bytes& b, unsigned w, unsigned h) { PlainBinary(b, w, h, t); });
    ExpectSameBytes(
        "emboss", [](uchar* b, unsigned w, unsigned h) { EXPECT_EQ(Emboss(b, w, h), 0); }, PlainEmboss);
    ExpectSameBytes("sharpen", Sharpen, PlainSharpen);
    for (auto [r, g, b] :
        { std::tuple { 20, 40, 63 }, { 0, 0, 1 }, { 255, 0, 7 }, { -30, 5, 0 }, { 300, -1000, 2 } })
        ExpectSameBytes(
            "offset", [=](uchar* p, unsigned w, unsigned h) { EXPECT_EQ(ColorOffset(p, w, h, r, g, b), 0); },
            [=](Bytes& p, unsigned w, unsigned h) { PlainColorOffset(p, w, h, r, g, b); });
}

// All 2^24 colours: the integer model of the float gray must agree everywhere.
TEST(ImageProcess, GrayAndBinaryAgreeWithTheFloatTablesForEveryColour)
{
    const unsigned w = 65536, h = 256; // one row per red value; stride has no padding
    Bytes all(std::size_t(w) * 3 * h);
    for (unsigned r = 0; r < 256; ++r)
        for (unsigned gb = 0; gb < 65536; ++gb) {
            uchar* p = &all[(std::size_t(r) * w + gb) * 3];
            p[0] = uchar(gb & 0xFF);
            p[1] = uchar(gb >> 8);
            p[2] = uchar(r);
        }
    Bytes expected(all.size() / 3);
    for (std::size_t i = 0; i < expected.size(); ++i)
        expected[i] = uchar(kPlain.GrayOf(&all[3 * i]));

    Bytes gray = all;
    ASSERT_EQ(Gray(gray.data(), w, h), 0);
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < expected.size(); ++i)
        wrong
            += gray[3 * i] != expected[i] || gray[3 * i + 1] != expected[i] || gray[3 * i + 2] != expected[i];
    EXPECT_EQ(wrong, 0u);

    for (int t : { 1, 100, 181 }) {
        Bytes bin = all;
        ASSERT_EQ(Binary(bin.data(), w, h, t), 0);
        wrong = 0;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const uchar want = expected[i] < t ? 0 : 255;
            wrong += bin[3 * i] != want || bin[3 * i + 1] != want || bin[3 * i + 2] != want;
        }
        EXPECT_EQ(wrong, 0u) << "threshold " << t;
    }
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
    for (unsigned w : { 0u, 5u })
        for (unsigned h : { 0u, 3u }) {
            if (w != 0 && h != 0)
                continue;
            EXPECT_EQ(FlipVertical(b.data(), w, h), -1);
            EXPECT_EQ(MirrorHorizontal(b.data(), w, h), -1);
            EXPECT_EQ(Gray(b.data(), w, h), -1);
            EXPECT_EQ(Negative(b.data(), w, h), -1);
            EXPECT_EQ(Binary(b.data(), w, h, 9), -1);
            EXPECT_EQ(Emboss(b.data(), w, h), -1);
            Sharpen(b.data(), w, h);
            EXPECT_EQ(ColorOffset(b.data(), w, h, 1, 2, 3), -1);
        }
    EXPECT_EQ(b, before);
    EXPECT_EQ(FlipVertical(nullptr, 5, 3), -1);
    EXPECT_EQ(MirrorHorizontal(nullptr, 5, 3), -1);
    EXPECT_EQ(Gray(nullptr, 5, 3), -1);
    EXPECT_EQ(Negative(nullptr, 5, 3), -1);
    EXPECT_EQ(Binary(nullptr, 5, 3, 1), -1);
    EXPECT_EQ(Emboss(nullptr, 5, 3), -1);
    Sharpen(nullptr, 5, 3);
    EXPECT_EQ(ColorOffset(nullptr, 5, 3, 1, 1, 1), -1);
    // Zero gains are a no-op that still reports -1.
    EXPECT_EQ(ColorOffset(b.data(), 5, 3, 0, 0, 0), -1);
    EXPECT_EQ(b, before);
}

TEST(ImageProcess, KnownValues)
{
    // 2 x 2 picture, stride 8: two padding bytes per row.
    Bytes b = { 255, 255, 255, 0, 0, 0, 0xAA, 0xBB, 10, 20, 30, 40, 50, 60, 0xCC, 0xDD };
    Bytes g = b;
    Gray(g.data(), 2, 2);
    EXPECT_EQ(g[0], 181); // white is darker: the weights add up to 0.71
    EXPECT_EQ(g[3], 0);
    EXPECT_EQ(g[6], 0xAA); // padding untouched
    EXPECT_EQ(g[8], 16); // B 10, G 20, R 30: trunc(9 + 6 + 1.1)
    Bytes n = b;
    Negative(n.data(), 2, 2);
    EXPECT_EQ((Bytes { n[0], n[5], n[6], n[7], n[8] }), (Bytes { 0, 255, 0xAA, 0xBB, 245 }));

    Bytes w = b;
    Binary(w.data(), 2, 2, 0);
    EXPECT_EQ((Bytes { w[3], w[4], w[5] }), (Bytes { 255, 255, 255 })); // threshold 0: all white
    Binary(w.data(), 2, 2, 256);
    EXPECT_EQ((Bytes { w[0], w[1], w[2] }), (Bytes { 0, 0, 0 })); // 256: all black
    Bytes k = b;
    Binary(k.data(), 2, 2, -1); // compared unsigned: nothing reaches it
    EXPECT_EQ((Bytes { k[0], k[8] }), (Bytes { 0, 0 }));

    // Mirror of a 3-pixel row (9 bytes, stride 12): the first pixel comes
    // from bytes 9..11, which are padding.
    Bytes m = { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12 };
    MirrorHorizontal(m.data(), 3, 1);
    EXPECT_EQ(m, (Bytes { 10, 11, 12, 7, 8, 9, 4, 5, 6, 0, 0, 0 }));

    // Emboss: lower-right neighbour brighter by more than 128 wraps to white.
    Bytes e = { 10, 100, 200, 0, 0, 0, 0, 0, 0, 0, 0, 250, 50, 70, 0, 0 };
    Emboss(e.data(), 2, 2);
    EXPECT_EQ((Bytes { e[0], e[1], e[2] }), (Bytes { 255, 178, 255 })); // 10-250, 100-50, 200-70 (+128)
    EXPECT_EQ((Bytes { e[3], e[4], e[5], e[6], e[7] }), (Bytes { 128, 128, 128, 0, 0 }));
    EXPECT_EQ((Bytes { e[8], e[15] }), (Bytes { 128, 128 })); // last row filled, padding included
}

TEST(ImageProcess, SharpenLeavesThinPicturesAlone)
{
    for (auto [w, h] : { std::pair { 2u, 9u }, { 9u, 2u }, { 1u, 5u }, { 5u, 1u } }) {
        Bytes b = Noise(w, h, w * 10 + h);
        const Bytes before = b;
        Sharpen(b.data(), w, h);
        EXPECT_EQ(b, before) << w << "x" << h;
    }
}

TEST(ProcessChain, CopiesWithoutPaddingThenAppliesTheSwitchesInOrder)
{
    const unsigned w = 7, h = 5; // stride 24, 3 padding bytes per row
    const Bytes source = Noise(w, h, 77);
    ProcessSwitches all;
    all.flip = all.mirror = all.gray = all.negative = all.binary = all.emboss = all.sharpen = true;
    all.binaryLevel = 60;
    all.rgb = true;
    all.red = 3;
    all.green = 0;
    all.blue = 63;

    // Each switch alone, then all together, against the plain steps.
    std::vector<std::pair<ProcessSwitches, std::function<void(Bytes&)>>> cases;
    ProcessSwitches none;
    cases.push_back({ none, [](Bytes&) {} });
    auto only = [](auto set) {
        ProcessSwitches s;
        set(s);
        return s;
    };
    cases.push_back({ only([](auto& s) { s.flip = true; }), [](Bytes& b) { PlainFlip(b, w, h); } });
    cases.push_back({ only([](auto& s) { s.sharpen = true; }), [](Bytes& b) { PlainSharpen(b, w, h); } });
    cases.push_back({ only([](auto& s) { s.rgb = true; }), [](Bytes&) {} }); // zero gains: no change
    cases.push_back({ all, [](Bytes& b) {
                         PlainFlip(b, w, h);
                         PlainMirror(b, w, h);
                         PlainGray(b, w, h);
                         PlainNegative(b, w, h);
                         PlainBinary(b, w, h, 60);
                         PlainEmboss(b, w, h);
                         PlainSharpen(b, w, h);
                         PlainColorOffset(b, w, h, 3, 0, 63);
                     } });
    for (const auto& [switches, plain] : cases) {
        Bytes target(source.size(), 0xEE);
        Bytes expected = target;
        std::memcpy(expected.data(), source.data(), w * h * 3); // padding ignored: the tail keeps 0xEE
        plain(expected);
        RunProcessChain(source.data(), target.data(), w, h, switches);
        EXPECT_EQ(target, expected);
    }
    // The tail of the target that the short copy does not reach.
    Bytes target(source.size(), 0xEE);
    RunProcessChain(source.data(), target.data(), w, h, none);
    EXPECT_EQ(target[source.size() - 1], 0xEE);
    EXPECT_EQ(target[w * h * 3 - 1], source[w * h * 3 - 1]);

    RunProcessChain(nullptr, target.data(), w, h, all); // nothing to do, no crash
    RunProcessChain(source.data(), nullptr, w, h, all);
}
