// oculix-cli rois end to end, and ImageJ itself opening and measuring what
// it writes, and making ROIs Oculix reads.

#include "CliSupport.h"
#include "ImageJSupport.h"
#include "measure/CGVLAngle.h"
#include "measure/CGVLElemMgr.h"
#include "measure/ImageJRois.h"
#include "measure/MeasurementXmp.h"
#include "measure/ShapesJson.h"

#include <QFile>
#include <QRegularExpression>

#include <map>

namespace {

// One of each kind, in a 320 x 240 picture.
constexpr char kShapes[]
    = R"([{"points":[[220,30],[20,30]],"type":2},{"points":[[10,200],[131,111]],"type":2},)"
      R"({"points":[[50,50],[150,50],[80,140]],"type":3},{"points":[[30,30],[130,30],[30,90],[130,90]],"type":4},)"
      R"({"points":[[50,100],[150,100],[150,200],[70,180]],"type":5},{"points":[[200,100],[240,100]],"type":6},)"
      R"({"points":[[100,60],[150,110],[100,160]],"type":7},{"points":[[10,10]],"type":1},)"
      R"({"points":[[33,44]],"type":11},{"points":[[5,5],[60,60]],"type":12},)"
      R"({"points":[[20,220]],"text":["Grain 7"],"type":14}])";
constexpr double kPixel = 0.5; // um

class CliRois : public CliFixture
{
protected:
    // ImageJ's printed lines for a macro.
    QString RunImageJ(const QString& macro) { return ::RunImageJ(macro, Path("macro.ijm")); }

    void SaveWithShapes(const QString& name, CGVLElemMgr& mgr)
    {
        mgr.SetUnit({ 0, kPixel, kPixel, 100, 100 });
        mgr.CreateShape(ShapeType::Ruler);
        ASSERT_EQ(ShapesFromJson(mgr, kShapes), 11);
        QImage picture(320, 240, QImage::Format_RGB32);
        picture.fill(qRgb(200, 200, 190));
        ASSERT_TRUE(picture.save(Path(name)));
        ASSERT_TRUE(MeasurementXmp::Write(Path(name), mgr, true));
    }
};

} // namespace

TEST_F(CliRois, WritesASetOrOneRoiAndFailsCleanly)
{
    CGVLElemMgr mgr;
    SaveWithShapes("shapes.png", mgr);
    const CliRun run = Run({ "rois", Path("shapes.png"), "-o", Path("RoiSet.zip") }, false);
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("Wrote 11 ROIs")) << run.err.toStdString();
    QFile set(Path("RoiSet.zip"));
    ASSERT_TRUE(set.open(QIODevice::ReadOnly));
    QString error;
    const auto rois = ImageJRois::DecodeFile(set.readAll(), set.fileName(), &error);
    ASSERT_TRUE(rois) << error.toStdString();
    EXPECT_EQ(rois->size(), 11U);
    EXPECT_EQ(rois->back().name, QStringLiteral("0011-text"));

    QImage plain(20, 20, QImage::Format_RGB32);
    plain.fill(Qt::gray);
    ASSERT_TRUE(plain.save(Path("plain.png")));
    EXPECT_ONE_ERROR(Run({ "rois", Path("plain.png"), "-o", Path("none.zip") }, false), 1,
        "no shapes stored in this picture");
    EXPECT_ONE_ERROR(Run({ "rois", Path("shapes.png"), "-o", Path("one.roi") }, false), 1,
        "11 shapes need a ROI set (.zip)");
    EXPECT_ONE_ERROR(
        Run({ "rois", Path("shapes.png"), "-o", Path("set.txt") }, false), 2, "a ROI set is a .zip");
    EXPECT_ONE_ERROR(Run({ "rois", Path("shapes.png") }, false), 2, "rois needs -o ROISET.zip");
    EXPECT_ONE_ERROR(Run({ "rois", Path("shapes.png"), "-o", Path("full.zip") }, false, 100), 1,
        "cannot write " + Path("full.zip"));
    EXPECT_EQ(Files(), QStringList({ "RoiSet.zip", "plain.png", "shapes.png" }));
}

// ImageJ opens the set in its ROI Manager and, with the picture's scale,
// measures Oculix's lengths, angles and areas.
TEST_F(CliRois, ImageJMeasuresTheExportedShapesToOculixsNumbers)
{
    REQUIRE_TOOL(HaveImageJ(), "ImageJ (imagej, xvfb)");
    CGVLElemMgr mgr;
    SaveWithShapes("shapes.png", mgr);
    ASSERT_EQ(Run({ "rois", Path("shapes.png"), "-o", Path("RoiSet.zip") }, false).code, 0);
    const QString out = RunImageJ(
        QStringLiteral("open(\"%1\"); run(\"Set Scale...\", \"distance=1 known=%2 unit=um\");\n"
                       "roiManager(\"Open\", \"%3\");\n"
                       "for (i = 0; i < roiManager(\"count\"); i++) { roiManager(\"select\", i);\n"
                       "  print(\"IJ \" + Roi.getName + \" \" + d2s(getValue(\"Length\"), 6) + \" \"\n"
                       "    + d2s(getValue(\"Area\"), 6) + \" \" + d2s(getValue(\"Angle\"), 6)); }\n")
            .arg(Path("shapes.png"))
            .arg(kPixel)
            .arg(Path("RoiSet.zip")));
    std::map<QString, std::array<double, 3>> theirs;
    const QRegularExpression line(R"(^IJ (\S+) (\S+) (\S+) (\S+)$)");
    for (const QString& text : out.split('\n'))
        if (const QRegularExpressionMatch m = line.match(text.trimmed()); m.hasMatch())
            theirs[m.captured(1)]
                = { m.captured(2).toDouble(), m.captured(3).toDouble(), m.captured(4).toDouble() };
    ASSERT_EQ(theirs.size(), 11U) << out.toStdString();

    const auto lock = mgr.Lock();
    const auto shape = [&mgr](int i) { return mgr.m_arShape[std::size_t(i)].get(); };
    // Straight lines: the length.
    EXPECT_NEAR(theirs["0001-line"][0], shape(1)->GetLength(), shape(1)->GetLength() * 0.001);
    EXPECT_NEAR(theirs["0002-line"][0], shape(2)->GetLength(), shape(2)->GetLength() * 0.001);
    // The angle at the middle point: Oculix turns from the first arm to the
    // second (0 to 360 degrees), ImageJ gives the angle between the arms.
    const double angle = dynamic_cast<CGVLAngle*>(shape(3))->GetAngle();
    EXPECT_NEAR(theirs["0003-angle"][2], angle <= 180 ? angle : 360 - angle, 0.001 * 90);
    // Rectangle and polygon: the area.
    EXPECT_NEAR(theirs["0004-rectangle"][1], shape(4)->GetArea(), shape(4)->GetArea() * 0.001);
    EXPECT_NEAR(theirs["0005-polygon"][1], shape(5)->GetArea(), shape(5)->GetArea() * 0.001);
    // Circles: Oculix takes pi r^2 (pi as 3.14159), ImageJ counts the pixels
    // inside the oval; the two differ by about the rim, under 2 % at these radii.
    EXPECT_NEAR(theirs["0006-circle"][1], shape(6)->GetArea(), shape(6)->GetArea() * 0.02);
    EXPECT_NEAR(theirs["0007-circle"][1], shape(7)->GetArea(), shape(7)->GetArea() * 0.02);
    std::printf("[ figures  ] circle areas: Oculix %.4f / %.4f, ImageJ %.4f / %.4f um2\n",
        shape(6)->GetArea(), shape(7)->GetArea(), theirs["0006-circle"][1], theirs["0007-circle"][1]);
}

// ROIs made in ImageJ, as a set and as one file, come in as Oculix shapes.
TEST_F(CliRois, ImageJMadeRoisBecomeShapes)
{
    REQUIRE_TOOL(HaveImageJ(), "ImageJ (imagej, xvfb)");
    RunImageJ(QStringLiteral("newImage(\"x\", \"8-bit black\", 300, 200, 1);\n"
                             "makeLine(10, 20, 110, 20); roiManager(\"Add\");\n"
                             "makeRectangle(20, 30, 40, 50); roiManager(\"Add\");\n"
                             "makePolygon(100, 100, 160, 100, 130, 150); roiManager(\"Add\");\n"
                             "makeOval(200, 50, 60, 60); roiManager(\"Add\");\n"
                             "makeSelection(\"angle\", newArray(10, 60, 10), newArray(150, 150, 100));"
                             " roiManager(\"Add\");\n"
                             "makePoint(250, 180); roiManager(\"Add\");\n"
                             "makeOval(10, 10, 30, 10); roiManager(\"Add\");\n"
                             "roiManager(\"Save\", \"%1\");\n"
                             "makePolygon(5, 5, 25, 5, 25, 25); saveAs(\"Selection\", \"%2\");\n")
                  .arg(Path("ImageJ.zip"), Path("one.roi")));
    for (const char* name : { "ImageJ.zip", "one.roi" }) {
        QFile file(Path(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        QString error;
        const auto rois = ImageJRois::DecodeFile(file.readAll(), file.fileName(), &error);
        ASSERT_TRUE(rois) << error.toStdString();
        CGVLElemMgr mgr;
        mgr.CreateShape(ShapeType::Ruler);
        int skipped = -1;
        const int made = ImageJRois::ToShapes(mgr, *rois, &skipped);
        if (QLatin1String(name) == QLatin1String("one.roi")) {
            EXPECT_EQ(made, 1);
            EXPECT_EQ(ShapesToJson(mgr), QByteArray("[[5,5,5,25,5,25,25]]"));
            continue;
        }
        EXPECT_EQ(made, 6);
        EXPECT_EQ(skipped, 1) << "the ellipse";
        EXPECT_EQ(ShapesToJson(mgr),
            QByteArray("[[2,10,20,110,20],[4,20,30,60,30,20,80,60,80],[5,100,100,160,100,130,150],"
                       "[6,230,80,260,80],[3,10,150,60,150,10,100],[1,250,180]]"));
    }
}
