#include "CliSupport.h"
#include "FocusSeries.h"
#include "measure/CGVLElemMgr.h"
#include "measure/MeasurementXmp.h"

#include <QFile>

namespace {

const QSize kSize(160, 120);

class CliStack : public CliFixture
{
protected:
    // Three pictures drifting and breathing, each sharp in its third of
    // the width; the first keeps a calibration.
    void SaveSeries()
    {
        const FrameWarp warps[] = { {}, { 1.5, -0.7, 1.005 }, { 3.1, -1.6, 1.01 } };
        for (int i = 0; i < 3; ++i) {
            const QImage frame = Render(m_texture, kSize, warps[i], [i](double x, double) {
                return int(std::floor(x / (kSize.width() / 3.0))) == i ? 0.0 : 3.0;
            });
            FCObjImage picture;
            ASSERT_TRUE(picture.FromQImage(frame));
            ASSERT_TRUE(picture.Save(Path(QStringLiteral("f%1.png").arg(i))));
        }
        CGVLElemMgr mgr;
        mgr.SetUnit(kUnit);
        QString error;
        ASSERT_TRUE(MeasurementXmp::Write(Path("f0.png"), mgr, false, 1.0, 1.0, &error))
            << error.toStdString();
    }

    QStringList Series() const { return { Path("f0.png"), Path("f1.png"), Path("f2.png") }; }

    const WaveTexture m_texture { 11 };
    const CalibrationRecord kUnit { 0, 1.75, 1.8, 350, 360 };
};

} // namespace

TEST_F(CliStack, FusesInTheFirstPicturesGeometryWithItsCalibration)
{
    SaveSeries();
    const CliRun run = Run(
        QStringList { "stack" } + Series() + QStringList { "-o", Path("all.png"), "--depth", Path("d.png") },
        false);
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.isEmpty());
    EXPECT_TRUE(run.err.contains("Saved the fusion of 3 pictures to " + Path("all.png")))
        << run.err.toStdString();

    FCObjImage fused;
    ASSERT_TRUE(fused.Load(Path("all.png")));
    ASSERT_EQ(QSize(fused.Width(), fused.Height()), kSize);
    // Sharp everywhere, and in the first picture's place: the truth is the
    // first picture's geometry with no blur.
    const QImage truth = Render(m_texture, kSize, {}, [](double, double) { return 0.0; });
    const QImage blurred = Render(m_texture, kSize, {}, [](double, double) { return 3.0; });
    const QImage result = fused.ToQImage();
    double fusedError = 0.0;
    double blurredError = 0.0;
    const QRect inside(8, 8, kSize.width() - 16, kSize.height() - 16);
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x) {
            fusedError += std::abs(qRed(result.pixel(x, y)) - qRed(truth.pixel(x, y)));
            blurredError += std::abs(qRed(blurred.pixel(x, y)) - qRed(truth.pixel(x, y)));
        }
    }
    EXPECT_LT(fusedError, blurredError / 5);
    const MeasurementXmp::Stored stored = MeasurementXmp::Read(Path("all.png"));
    ASSERT_TRUE(stored.unit.has_value());
    EXPECT_EQ(*stored.unit, kUnit);

    // The depth map: 0 for the first picture's third, 255 for the last's.
    FCObjImage depth;
    ASSERT_TRUE(depth.Load(Path("d.png")));
    const QImage map = depth.ToQImage();
    ASSERT_EQ(map.size(), kSize);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(qGray(map.pixel(int((i + 0.5) * kSize.width() / 3), kSize.height() / 2)),
            int(std::lround(i * 255.0 / 2)))
            << i;

    // A type that keeps no calibration says so, and still saves.
    const CliRun bmp
        = Run(QStringList { "stack" } + Series() + QStringList { "--out", Path("all.bmp") }, false);
    ASSERT_EQ(bmp.code, 0) << bmp.err.toStdString();
    EXPECT_TRUE(bmp.err.contains(Path("all.bmp") + ": this type of file keeps no calibration"))
        << bmp.err.toStdString();
    EXPECT_TRUE(QFileInfo::exists(Path("all.bmp")));
}

TEST_F(CliStack, BadUsageAndUnfitPicturesWriteNothing)
{
    SaveSeries();
    const QString out = Path("out.png");
    EXPECT_ONE_ERROR(Run(QStringList { "stack" } + Series(), false), 2, "stack needs -o OUT");
    EXPECT_ONE_ERROR(
        Run({ "stack", Path("f0.png"), "-o", out }, false), 2, "stack needs at least two pictures");
    EXPECT_ONE_ERROR(Run(QStringList { "stack", "-o", Path("out.doc") } + Series(), false), 2,
        "the extension names no picture type");
    EXPECT_ONE_ERROR(Run(QStringList { "stack", "-o", out, "--depth", Path("d.txt") } + Series(), false), 2,
        "the extension names no picture type");

    EXPECT_ONE_ERROR(Run({ "stack", Path("f0.png"), Path("gone.png"), "-o", out }, false), 1,
        "cannot read " + Path("gone.png"));
    QFile junk(Path("junk.png"));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write("not a picture");
    junk.close();
    EXPECT_ONE_ERROR(Run({ "stack", Path("f0.png"), Path("junk.png"), "-o", out }, false), 1,
        "cannot read " + Path("junk.png"));
    FCObjImage small;
    ASSERT_TRUE(small.FromQImage(Render(m_texture, kSize / 2, {}, [](double, double) { return 0.0; })));
    ASSERT_TRUE(small.Save(Path("small.png")));
    EXPECT_ONE_ERROR(Run({ "stack", Path("f0.png"), Path("small.png"), "-o", out }, false), 1,
        Path("small.png") + ": The picture is 80 x 60 pixels, the first of the series 160 x 120.");
    // A full disk leaves no half picture.
    EXPECT_ONE_ERROR(
        Run(QStringList { "stack", "-o", out } + Series(), false, 2000), 1, "cannot write " + out);
    EXPECT_EQ(Files(), QStringList({ "f0.png", "f1.png", "f2.png", "junk.png", "small.png" }));
}
