#include "CliSupport.h"
#include "SyntheticSlide.h"
#include "measure/CGVLElemMgr.h"
#include "measure/MeasurementXmp.h"

#include <QFile>
#include <QImage>

namespace {

constexpr int kW = 160;
constexpr int kH = 120;

class CliStitch : public CliFixture
{
protected:
    // Views of one specimen at the given top-left corners, as PNG files.
    QStringList SaveViews(
        const std::vector<QPointF>& at, const QString& name = QStringLiteral("view"), unsigned seed = 5)
    {
        const SyntheticSlide specimen(seed);
        QStringList paths;
        for (size_t i = 0; i < at.size(); ++i) {
            const QString path = Path(QStringLiteral("%1%2.png").arg(name).arg(i));
            EXPECT_TRUE(specimen.View(at[i].x(), at[i].y(), kW, kH).save(path));
            paths << path;
        }
        return paths;
    }
};

} // namespace

TEST_F(CliStitch, WritesTheUnionWithPositionsAndTheFirstCalibration)
{
    const std::vector<QPointF> at { { 0, 0 }, { 100.5, 6.25 }, { 95.75, 80.5 }, { -20.25, 70 } };
    const QStringList views = SaveViews(at);
    const CalibrationRecord unit { 0, 1.25, 1.25, 250.0, 250.0 };
    CGVLElemMgr mgr;
    mgr.SetUnit(unit);
    QString error;
    ASSERT_TRUE(MeasurementXmp::Write(views[0], mgr, false, 1.0, 1.0, &error)) << error.toStdString();

    const QString out = Path("mosaic.png");
    const QString positions = Path("pos.csv");
    const CliRun run
        = Run(QStringList { "stitch" } + views + QStringList { "-o", out, "--positions", positions });
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    const QImage mosaic(out);
    // From x = -20.25 to 100.5 + 160, y = 0 to 80.5 + 120.
    EXPECT_EQ(mosaic.size(), QSize(281, 201));

    QFile file(positions);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = file.readAll().split('\n');
    ASSERT_EQ(lines.size(), 5); // and the last line ends
    EXPECT_TRUE(lines[4].isEmpty());
    for (int i = 0; i < 4; ++i) {
        const QList<QByteArray> fields = lines[i].split(',');
        ASSERT_EQ(fields.size(), 3) << lines[i].toStdString();
        EXPECT_EQ(QString::fromUtf8(fields[0]), views[i]);
        EXPECT_NEAR(fields[1].toDouble(), at[size_t(i)].x() + 20.25, 0.1) << i;
        EXPECT_NEAR(fields[2].toDouble(), at[size_t(i)].y(), 0.1) << i;
    }
    const MeasurementXmp::Stored stored = MeasurementXmp::Read(out);
    ASSERT_TRUE(stored.unit.has_value());
    CalibrationRecord kept;
    stored.ApplyTo(kept);
    EXPECT_EQ(kept, unit);
}

TEST_F(CliStitch, AnythingUnusableFailsWithNothingWritten)
{
    const QStringList views = SaveViews({ { 0, 0 }, { 90, 10 } });
    // A view of another specimen.
    const QString elsewhere = SaveViews({ { 0, 0 } }, QStringLiteral("elsewhere"), 6).first();
    const QString out = Path("mosaic.jpg");
    EXPECT_ONE_ERROR(Run(QStringList { "stitch", "--quiet", views[0], elsewhere, views[1], "-o", out,
                         "--positions", Path("pos.csv") }),
        1, "elsewhere0.png cannot be placed");
    EXPECT_ONE_ERROR(
        Run({ "stitch", "--quiet", views[0], Path("missing.png"), "-o", out }), 1, "missing.png");
    QFile broken(Path("broken.bmp"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("not a picture");
    broken.close();
    EXPECT_ONE_ERROR(Run({ "stitch", "--quiet", views[0], broken.fileName(), "-o", out }), 1, "cannot read");
    EXPECT_ONE_ERROR(Run({ "stitch", "--quiet", views[0], views[1], "-o", Path("no/such/folder/m.png") }), 1,
        "does not exist");
    EXPECT_FALSE(QFile::exists(out));
    EXPECT_FALSE(QFile::exists(Path("pos.csv")));
    EXPECT_EQ(Files().size(), 4) << Files().join(' ').toStdString();

    // A calibrated first picture cannot go into a file that keeps no calibration.
    CGVLElemMgr mgr;
    mgr.SetUnit({ 0, 2.0, 2.0, 400.0, 400.0 });
    ASSERT_TRUE(MeasurementXmp::Write(views[0], mgr, false));
    EXPECT_ONE_ERROR(Run({ "stitch", "--quiet", views[0], views[1], "-o", Path("m.bmp") }), 1, "calibration");
    EXPECT_EQ(Files().size(), 4) << Files().join(' ').toStdString();
}
