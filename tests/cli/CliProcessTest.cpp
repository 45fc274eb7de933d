// oculix-cli process, and the corrections the camera commands share with it.

#include "CliSupport.h"
#include "RequiredTools.h"
#include "image/ProcessChain.h"

#include <QRect>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

// A 24-bit picture, colour of each pixel from fn(x, y) in picture coordinates.
FCObjImage Make(int width, int height, const std::function<QRgb(int, int)>& fn)
{
    FCObjImage picture(width, height, 24);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.SetPixelColor(x, y, fn(x, y));
    return picture;
}

// Light falling to 60 % at the corners, with a reddish cast.
double Fall(int x, int y)
{
    const double dx = (x - 30) / 30.0;
    const double dy = (y - 20) / 20.0;
    return 1.0 - 0.4 * (dx * dx + dy * dy) / 2;
}
QRgb Lit(double level, int x, int y)
{
    const double f = Fall(x, y);
    return qRgb(
        int(std::lround(level * f)), int(std::lround(level * 0.85 * f)), int(std::lround(level * 0.7 * f)));
}

FCObjImage Load(const QString& path)
{
    FCObjImage picture;
    EXPECT_TRUE(picture.Load(path)) << path.toStdString();
    return picture;
}

using CliProcess = CliFixture;

} // namespace

// Without corrections the picture goes through the chain as a still does;
// with none at all it comes out as it went in.
TEST_F(CliProcess, WithoutCorrectionsIsTheStillChain)
{
    const FCObjImage in = Make(61, 41, [](int x, int y) { return qRgb(x * 4, y * 6, (x * y) % 256); });
    ASSERT_TRUE(in.Save(Path("in.bmp")));
    ASSERT_EQ(Run({ "process", Path("in.bmp"), "-o", Path("same.bmp") }, false).code, 0);
    FCObjImage same = Load(Path("same.bmp"));
    EXPECT_TRUE(
        std::equal(in.GetMemStart(), in.GetMemStart() + in.GetPitch() * in.Height(), same.GetMemStart()));

    ASSERT_EQ(
        Run({ "process", Path("in.bmp"), "-o", Path("chain.bmp"), "--process", "mirror,sharpen" }, false)
            .code,
        0);
    ProcessSwitches s;
    s.mirror = s.sharpen = true;
    FCObjImage expected = in;
    RunProcessChain(in.GetMemStart(), expected.GetMemStart(), 61, 41, s);
    const FCObjImage chain = Load(Path("chain.bmp"));
    EXPECT_TRUE(std::equal(
        expected.GetMemStart(), expected.GetMemStart() + expected.GetPitch() * 41, chain.GetMemStart()));
}

// A shaded, tinted card with its blank field and a white balance over it
// comes out even and gray.
TEST_F(CliProcess, FlatFieldAndWhiteBalanceMakeAnEvenGrayCard)
{
    ASSERT_TRUE(Make(60, 40, [](int x, int y) { return Lit(230, x, y); }).Save(Path("blank.png")));
    ASSERT_TRUE(Make(60, 40, [](int x, int y) { return Lit(160, x, y); }).Save(Path("card.png")));
    const CliRun run = Run({ "process", Path("card.png"), "-o", Path("out.png"), "--flat-field",
                               Path("blank.png"), "--white-balance", "10,10,20,15" },
        false);
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    const FCObjImage out = Load(Path("out.png"));
    double low = 255;
    double high = 0;
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 60; ++x) {
            const QRgb p = out.GetPixelColor(x, y);
            for (int v : { qRed(p), qGreen(p), qBlue(p) }) {
                low = std::min<double>(low, v);
                high = std::max<double>(high, v);
            }
        }
    EXPECT_LE(high - low, 3) << "from " << low << " to " << high;
}

// Every way to get it wrong: bad usage is 2, work that cannot be done is 1,
// each with one line, and no file is left behind.
TEST_F(CliProcess, ExitCodes)
{
    ASSERT_TRUE(Make(60, 40, [](int x, int y) { return Lit(200, x, y); }).Save(Path("in.png")));
    ASSERT_TRUE(Make(50, 40, [](int, int) { return qRgb(200, 200, 200); }).Save(Path("small.png")));
    ASSERT_TRUE(Make(60, 40, [](int, int) { return qRgb(200, 0, 200); }).Save(Path("nogreen.png")));
    const QString in = Path("in.png");
    const QString out = Path("out.png");
    struct Case
    {
        QStringList args;
        int code;
        const char* fragment;
    };
    const Case cases[] = {
        { { in }, 2, "process needs -o OUT" },
        { { "-o", out }, 2, "IN is missing" },
        { { in, "-o", Path("out.xyz") }, 2, "the extension names no picture type" },
        { { in, "-o", out, "--white-balance", "1,2,3" }, 2, "a region is X,Y,W,H" },
        { { in, "-o", out, "--white-balance", "1,2,0,4" }, 2, "a region is X,Y,W,H" },
        { { in, "-o", out, "--dark", in }, 2, "--dark goes with --flat-field" },
        { { in, "-o", out, "--process", "blur" }, 2, "blur" },
        { { Path("none.png"), "-o", out }, 1, "no such file" },
        { { in, "-o", out, "--flat-field", Path("small.png") }, 1, "is 50 x 40, the picture 60 x 40" },
        { { in, "-o", out, "--flat-field", in, "--dark", Path("small.png") }, 1, "the dark frame" },
        { { in, "-o", out, "--flat-field", Path("nogreen.png") }, 1, "black in a colour" },
        { { in, "-o", out, "--white-balance", "60,0,5,5" }, 1, "lies outside the 60 x 40 picture" },
        { { Path("nogreen.png"), "-o", out, "--white-balance", "0,0,5,5" }, 1, "black in a colour" },
        { { in, "-o", Path("nowhere/out.png") }, 1, "does not exist" },
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        EXPECT_ONE_ERROR(Run(QStringList { "process" } + c.args, false), c.code, c.fragment);
    }
    EXPECT_EQ(Files(), QStringList({ "in.png", "nogreen.png", "small.png" }));
}

// The camera commands take the flat field too, and hold it to the frame size.
TEST_F(CliProcess, CameraCommandsCheckTheFlatField)
{
    ASSERT_TRUE(Make(50, 40, [](int, int) { return qRgb(200, 200, 200); }).Save(Path("small.png")));
    EXPECT_ONE_ERROR(
        Run({ "snapshot", "--format", "640x480:YUY2", "--flat-field", Path("small.png"), Path("s.png") }), 1,
        "is 50 x 40, the picture 640 x 480");
    EXPECT_ONE_ERROR(Run({ "record", "--format", "640x480:YUY2", "--seconds", "1", "--flat-field",
                         Path("small.png"), Path("r.avi") }),
        1, "is 50 x 40, the picture 640 x 480");
    EXPECT_ONE_ERROR(
        Run({ "record", "--seconds", "1", "--flat-field", Path("none.png"), Path("r.avi") }), 1, "none.png");
    EXPECT_ONE_ERROR(Run({ "record", "--seconds", "1", "--white-balance", "0,0,5", Path("r.avi") }), 2,
        "a region is X,Y,W,H");
    EXPECT_ONE_ERROR(Run({ "timelapse", "--interval", "1", "--count", "1", "--dark", Path("small.png") }), 2,
        "--dark goes with --flat-field");
    EXPECT_EQ(Files(), QStringList({ "small.png" }));
}

namespace {

struct RecordedSpread
{
    int frames = 0;
    // The largest over all frames of each channel's standard deviation, and
    // of the spread of the channels' means over the region.
    double deviation = 0;
    double regionCast = 0;
};

// Decodes every frame of a 640 x 480 recording with ffmpeg.
RecordedSpread MeasureRecording(const QString& file, const QRect& region)
{
    QProcess ffmpeg;
    ffmpeg.start(
        QStringLiteral("ffmpeg"), { "-v", "error", "-i", file, "-f", "rawvideo", "-pix_fmt", "rgb24", "-" });
    EXPECT_TRUE(ffmpeg.waitForFinished(30000));
    const QByteArray bytes = ffmpeg.readAllStandardOutput();
    constexpr int kRecordedWidth = 640;
    constexpr qsizetype kFrameBytes = kRecordedWidth * 480 * 3;
    RecordedSpread spread;
    for (qsizetype at = 0; at + kFrameBytes <= bytes.size(); at += kFrameBytes) {
        const auto* frame = reinterpret_cast<const uchar*>(bytes.constData() + at);
        for (int c = 0; c < 3; ++c) {
            double sum = 0;
            double squares = 0;
            for (qsizetype i = c; i < kFrameBytes; i += 3) {
                sum += frame[i];
                squares += double(frame[i]) * frame[i];
            }
            const double n = double(kFrameBytes / 3);
            spread.deviation = std::max(spread.deviation, std::sqrt(squares / n - (sum / n) * (sum / n)));
        }
        double means[3] = { 0, 0, 0 };
        for (int y = region.top(); y <= region.bottom(); ++y)
            for (int x = region.left(); x <= region.right(); ++x)
                for (int c = 0; c < 3; ++c)
                    means[c] += frame[(y * kRecordedWidth + x) * 3 + c];
        const auto [low, high] = std::minmax({ means[0], means[1], means[2] });
        spread.regionCast = std::max(spread.regionCast, (high - low) / (region.width() * region.height()));
        ++spread.frames;
    }
    return spread;
}

} // namespace

// A recording takes the corrections in every frame: a blank field of the
// simulated scene itself levels the frames almost flat, and the white balance
// makes the region gray with the flat field and without it.
TEST_F(CliProcess, RecordingCorrectsEveryFrame)
{
    REQUIRE_TOOL(HaveProgram("ffmpeg"), "ffmpeg");
    const QStringList small { "--format", "640x480:YUY2", "--seconds", "0.4" };
    ASSERT_EQ(Run(QStringList { "snapshot" } + small.mid(0, 2) + QStringList { Path("blank.png") }).code, 0);
    const QStringList balance { "--white-balance", "100,100,60,60" };
    const QRect region(100, 100, 60, 60);
    struct Case
    {
        QStringList args;
        bool even;
        bool gray;
    };
    double plain = 0;
    for (const Case& c : { Case { {}, false, false },
             Case { QStringList { "--flat-field", Path("blank.png") } + balance, true, true },
             Case { balance, false, true } }) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const CliRun run = Run(QStringList { "record" } + small + c.args + QStringList { Path("r.avi") });
        ASSERT_EQ(run.code, 0) << run.err.toStdString();
        const RecordedSpread spread = MeasureRecording(Path("r.avi"), region);
        EXPECT_GT(spread.frames, 1);
        if (c.args.isEmpty())
            plain = spread.deviation;
        // The simulated stage drifts a little, so the blank field taken
        // before does not level every frame flat, but far evener.
        EXPECT_EQ(spread.deviation < plain * 0.7, c.even) << spread.deviation << " against " << plain;
        EXPECT_EQ(spread.regionCast < 2, c.gray) << spread.regionCast;
    }
}
