// oculix-cli particles end to end, and its agreement with ImageJ itself.

#include "CliSupport.h"
#include "ImageJSupport.h"
#include "measure/CGVLElemMgr.h"
#include "measure/MeasurementXmp.h"
#include "platform/PrivateProfile.h"

#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>

#include <cmath>
#include <random>

namespace {

constexpr double kPi = 3.14159265358979323846;

struct Disc
{
    double x, y, r;
};

QImage Discs(int width, int height, const std::vector<Disc>& discs, int background, int particle, int noise,
    unsigned seed = 5)
{
    QImage picture(width, height, QImage::Format_RGB32);
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> jitter(-noise, noise);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            bool inside = false;
            for (const Disc& d : discs)
                inside = inside || std::hypot(x + 0.5 - d.x, y + 0.5 - d.y) <= d.r;
            const int level = std::clamp((inside ? particle : background) + jitter(rng), 0, 255);
            // Unequal channels: the gray conversion is part of what is compared.
            picture.setPixel(x, y, qRgb(std::clamp(level + 9, 0, 255), level, std::clamp(level - 9, 0, 255)));
        }
    }
    return picture;
}

// Round particles of many sizes, some cut by the edges, some rings.
QImage Specimen(std::vector<Disc>* placed = nullptr)
{
    std::mt19937 rng(17);
    std::uniform_real_distribution<double> ux(0, 480), uy(0, 360), ur(2.5, 16);
    std::vector<Disc> discs;
    while (discs.size() < 60) {
        const Disc d { ux(rng), uy(rng), ur(rng) };
        bool apart = true;
        for (const Disc& e : discs)
            apart = apart && std::hypot(d.x - e.x, d.y - e.y) > d.r + e.r + 3;
        if (apart)
            discs.push_back(d);
    }
    if (placed)
        *placed = discs;
    QImage picture = Discs(480, 360, discs, 60, 180, 25);
    // Dark holes in a few of the larger ones.
    for (const Disc& d : discs)
        if (d.r > 12)
            for (int y = int(d.y - 3); y <= int(d.y + 3); ++y)
                for (int x = int(d.x - 3); x <= int(d.x + 3); ++x)
                    if (picture.rect().contains(x, y))
                        picture.setPixel(x, y, qRgb(30, 30, 30));
    return picture;
}

struct Row
{
    double area, perimeter, x, y;
};

std::vector<Row> ParseRows(const QString& text, const QRegularExpression& pattern)
{
    std::vector<Row> rows;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        const QRegularExpressionMatch m = pattern.match(line.trimmed());
        if (m.hasMatch())
            rows.push_back({ m.captured(1).toDouble(), m.captured(2).toDouble(), m.captured(3).toDouble(),
                m.captured(4).toDouble() });
    }
    return rows;
}

using CliParticles = CliFixture;

} // namespace

TEST_F(CliParticles, CsvInTheCalibratedUnitAndOutlinesKeptAsShapes)
{
    // Two squares and a dot; the picture keeps a calibration of 0.5 um a pixel.
    QImage picture(120, 80, QImage::Format_RGB32);
    picture.fill(qRgb(230, 230, 230));
    for (int y = 10; y < 30; ++y)
        for (int x = 10; x < 30; ++x)
            picture.setPixel(x, y, qRgb(20, 30, 40));
    for (int y = 40; y < 50; ++y)
        for (int x = 60; x < 80; ++x)
            picture.setPixel(x, y, qRgb(20, 30, 40));
    picture.setPixel(100, 70, qRgb(0, 0, 0));
    const QString calibrated = Path("calibrated.png");
    ASSERT_TRUE(picture.save(calibrated));
    {
        CGVLElemMgr mgr;
        mgr.SetUnit({ 0, 0.5, 0.5, 100, 100 });
        ASSERT_TRUE(MeasurementXmp::Write(calibrated, mgr, false));
    }
    const CliRun run
        = Run({ "particles", calibrated, "--threshold", "otsu", "--dark", "--precision", "3", "--min-area",
                  "2", "--csv", Path("p.csv"), "--annotate", Path("outlines.png") },
            false);
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    QFile csv(Path("p.csv"));
    ASSERT_TRUE(csv.open(QIODevice::ReadOnly));
    const double squareCut = 4 * (1 - std::sqrt(0.5)); // four corners of 0.5-um pixels
    EXPECT_EQ(QString::fromUtf8(csv.readAll()),
        QStringLiteral("No.,Area,Perimeter,Diameter,Circularity,X,Y,Unit\n"
                       "1,100.000,%1,11.284,%2,10.000,10.000,um\n"
                       "2,50.000,%3,7.979,%4,35.000,22.500,um\n")
            .arg(QString::number(40 - squareCut, 'f', 3))
            .arg(QString::number(4 * kPi * 100 / std::pow(40 - squareCut, 2), 'f', 3))
            .arg(QString::number(30 - squareCut, 'f', 3))
            .arg(QString::number(4 * kPi * 50 / std::pow(30 - squareCut, 2), 'f', 3)));
    EXPECT_TRUE(run.err.contains("2 particles")) << run.err.toStdString();

    // The outlines come back as polygons measuring the same areas.
    const CliRun measured = Run({ "measure", Path("outlines.png") }, false);
    ASSERT_EQ(measured.code, 0) << measured.err.toStdString();
    EXPECT_TRUE(measured.out.contains(
        QRegularExpression("\n1,Ploygon area,100\\.0+, um2\n2,Ploygon area,50\\.0+, um2\n")))
        << measured.out.toStdString();

    // No calibration kept: pixels.
    ASSERT_TRUE(picture.save(Path("plain.png")));
    const CliRun plain
        = Run({ "particles", Path("plain.png"), "--threshold", "0:100", "--precision", "1" }, false);
    ASSERT_EQ(plain.code, 0) << plain.err.toStdString();
    EXPECT_TRUE(plain.out.startsWith("No.,Area,Perimeter,Diameter,Circularity,X,Y,Unit\n1,400.0,"))
        << plain.out.toStdString();
    EXPECT_TRUE(plain.out.endsWith("100.5,70.5,px\n")) << plain.out.toStdString();
}

TEST_F(CliParticles, ExitCodesAndNothingHalfWritten)
{
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::white);
    ASSERT_TRUE(picture.save(Path("white.png")));
    EXPECT_ONE_ERROR(Run({ "particles", Path("white.png") }, false), 2, "particles needs --threshold");
    EXPECT_ONE_ERROR(Run({ "particles", Path("white.png"), "--threshold", "200:100" }, false), 2,
        "bad --threshold \"200:100\"");
    EXPECT_ONE_ERROR(
        Run({ "particles", Path("white.png"), "--threshold", "otsu", "--annotate", Path("a.bmp") }, false), 2,
        "only .jpg, .png and .tif pictures keep shapes");
    EXPECT_ONE_ERROR(
        Run({ "particles", Path("white.png"), "--threshold", "otsu", "--min-area", "9", "--max-area", "3" },
            false),
        2, "--min-area is above --max-area");
    EXPECT_ONE_ERROR(Run({ "particles", Path("gone.png"), "--threshold", "otsu" }, false), 1,
        "cannot read " + Path("gone.png"));
    // Nothing found is an empty table, not a failure.
    const CliRun none = Run({ "particles", Path("white.png"), "--threshold", "0:10" }, false);
    EXPECT_EQ(none.code, 0);
    EXPECT_EQ(none.out, QStringLiteral("No.,Area,Perimeter,Diameter,Circularity,X,Y,Unit\n"));
    // A full disk leaves no half table behind.
    EXPECT_ONE_ERROR(
        Run({ "particles", Path("white.png"), "--threshold", "otsu", "--csv", Path("full.csv") }, false, 20),
        1, "cannot write " + Path("full.csv"));
    EXPECT_EQ(Files(), QStringList({ "white.png" }));
}

// ImageJ (Debian's imagej) run headless under a virtual display on the same
// picture with the same threshold and options: the same particles, areas
// and centres exactly, perimeters to 0.5 %.
TEST_F(CliParticles, AgreesWithImageJ)
{
    REQUIRE_TOOL(HaveImageJ(), "ImageJ (imagej, xvfb)");
    const QString specimen = Path("specimen.png");
    ASSERT_TRUE(Specimen().save(specimen));

    struct Case
    {
        QStringList ours;
        QString threshold; // the macro's
        QString options;
    };
    const Case cases[] = {
        { { "--threshold", "otsu" }, "setAutoThreshold(\"Otsu dark\");", "" },
        { { "--threshold", "default", "--exclude-edges", "--include-holes" },
            "setAutoThreshold(\"Default dark\");", "exclude include" },
        { { "--threshold", "triangle", "--min-area", "30", "--max-area", "500" },
            "setAutoThreshold(\"Triangle dark\");", "size=30-500" },
        { { "--threshold", "0:110", "--exclude-edges" }, "setThreshold(0, 110);", "exclude" },
    };
    const QRegularExpression ours(R"(^\d+,([\d.]+),([\d.]+),[\d.]+,[\d.]+,([\d.]+),([\d.]+),px$)");
    const QRegularExpression theirs(R"(^IJ ([\d.]+) ([\d.]+) ([\d.]+) ([\d.]+)$)");
    for (const Case& c : cases) {
        const std::vector<Row> reference = ParseRows(
            RunImageJ(
                QStringLiteral(
                    "open(\"%1\"); run(\"8-bit\"); %2\n"
                    "run(\"Set Measurements...\", \"area perimeter centroid redirect=None decimal=4\");\n"
                    "run(\"Analyze Particles...\", \"%3 display clear\");\n"
                    "for (i = 0; i < nResults; i++) print(\"IJ \" + d2s(getResult(\"Area\", i), 4) + \" \" + "
                    "d2s(getResult(\"Perim.\", i), 4) + \" \" + d2s(getResult(\"X\", i), 4) + \" \" + "
                    "d2s(getResult(\"Y\", i), 4));\n")
                    .arg(specimen, c.threshold, c.options),
                Path("analyse.ijm")),
            theirs);
        ASSERT_GT(reference.size(), 10U) << c.threshold.toStdString();

        const CliRun run = Run(QStringList { "particles", specimen, "--precision", "4" } + c.ours, false);
        ASSERT_EQ(run.code, 0) << run.err.toStdString();
        const std::vector<Row> rows = ParseRows(run.out, ours);
        const std::string name = c.ours.join(' ').toStdString();
        ASSERT_EQ(rows.size(), reference.size()) << name;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            EXPECT_DOUBLE_EQ(rows[i].area, reference[i].area) << name << " #" << i;
            EXPECT_NEAR(rows[i].perimeter, reference[i].perimeter, reference[i].perimeter * 0.005)
                << name << " #" << i;
            EXPECT_NEAR(rows[i].x, reference[i].x, 1e-3) << i;
            EXPECT_NEAR(rows[i].y, reference[i].y, 1e-3) << i;
        }
    }
}

// Touching pairs of discs of random sizes overlapping by up to a fifth of the
// smaller diameter: --watershed splits them as ImageJ's binary "Watershed" does.
TEST_F(CliParticles, WatershedSplitsTouchingPairsAsImageJDoes)
{
    REQUIRE_TOOL(HaveImageJ(), "ImageJ (imagej, xvfb)");
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> radius(6, 14), overlap(0, 0.2), turn(0, kPi);
    std::vector<Disc> discs;
    constexpr int kPairs = 40;
    for (int k = 0; k < kPairs; ++k) {
        const double r1 = radius(rng), r2 = radius(rng);
        const double d = r1 + r2 - overlap(rng) * 2 * std::min(r1, r2);
        const double a = turn(rng);
        const double cx = (k % 8) * 100 + 50, cy = (k / 8) * 120 + 60;
        discs.push_back({ cx - d / 2 * std::cos(a), cy - d / 2 * std::sin(a), r1 });
        discs.push_back({ cx + d / 2 * std::cos(a), cy + d / 2 * std::sin(a), r2 });
    }
    const QString pairs = Path("pairs.png");
    ASSERT_TRUE(Discs(800, 600, discs, 40, 200, 0).save(pairs));
    const QRegularExpressionMatch m
        = QRegularExpression(R"(IJ (\d+))")
              .match(RunImageJ(QStringLiteral("open(\"%1\"); run(\"8-bit\"); "
                                              "setThreshold(128, 255); run(\"Convert to "
                                              "Mask\");\nrun(\"Watershed\"); "
                                              "setThreshold(255, 255);\nrun(\"Analyze "
                                              "Particles...\", \"display clear\"); "
                                              "print(\"IJ \" + nResults);\n")
                                   .arg(pairs),
                  Path("split.ijm")));
    ASSERT_TRUE(m.hasMatch());
    const int theirs = m.captured(1).toInt();

    const CliRun run = Run({ "particles", pairs, "--threshold", "128:255", "--watershed" }, false);
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    const int ours = int(run.out.count(QLatin1Char('\n'))) - 1;
    const CliRun whole = Run({ "particles", pairs, "--threshold", "128:255" }, false);
    EXPECT_EQ(int(whole.out.count(QLatin1Char('\n'))) - 1, kPairs) << "the pairs touch";
    std::printf("[ figures  ] %d touching pairs: %d particles after our split, %d after ImageJ's\n", kPairs,
        ours, theirs);
    EXPECT_GE(ours, int(std::ceil(0.95 * 2 * kPairs)));
    EXPECT_LE(ours, 2 * kPairs);
    EXPECT_NEAR(ours, theirs, 2);
}
