#include "MeasureTestSupport.h"
#include "measure/CGVLCircle.h"
#include "measure/CGVLCircleT.h"
#include "measure/CGVLLine.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

using namespace MeasureTest;

namespace {

// A bright bar and a bright disc on a dark ground, at known sub-pixel places,
// anti-aliased as a camera sees them: each pixel holds the share of its square
// inside (exact for the bar, 16 x 16 samples for the disc). Integer
// coordinates are pixel centres.
constexpr double kBarLeft = 40.3;
constexpr double kBarRight = 140.72;
const QPointF kDisc(100.3, 110.6);
constexpr double kDiscRadius = 30.4;

double Overlap(double centre, double lo, double hi)
{
    return std::max(0.0, std::min(centre + 0.5, hi) - std::max(centre - 0.5, lo));
}

const QImage& Scene()
{
    static const QImage image = [] {
        QImage picture(180, 160, QImage::Format_Grayscale8);
        for (int y = 0; y < picture.height(); ++y) {
            uchar* row = picture.scanLine(y);
            for (int x = 0; x < picture.width(); ++x) {
                double in = Overlap(x, kBarLeft, kBarRight) * Overlap(y, 10, 50);
                for (int j = 0; j < 16; ++j) {
                    for (int i = 0; i < 16; ++i) {
                        const double px = x - 0.5 + (i + 0.5) / 16;
                        const double py = y - 0.5 + (j + 0.5) / 16;
                        in += (std::hypot(px - kDisc.x(), py - kDisc.y()) < kDiscRadius) / 256.0;
                    }
                }
                row[x] = uchar(std::lround(30 + 170 * in));
            }
        }
        return picture;
    }();
    return image;
}

// "Snap to edges" on or off, as the document answers the manager.
struct SnapFixture : MeasureFixture
{
    SnapFixture()
    {
        mgr.SetUnit({ 1, 0.01, 0.01, 0, 0 });
        EditAppearance(mgr, [](auto& a) { a.precision = 3; });
        mgr.SetSnapSource([this] { return on ? Scene() : QImage(); });
    }
    bool on = true;
};

bool Matches(const QString& text, const char* pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(QString::fromUtf8(pattern)))
        .match(text)
        .hasMatch();
}

} // namespace

TEST_F(SnapFixture, LineEndsMoveOntoTheEdgesAlongTheDragAndTheLabelStatesTheUncertainty)
{
    // A slightly slanting drag from inside both ends of the bar.
    Drag(mgr, 2, { 42, 28 }, { { 43, 28 }, { 138, 32 } });
    CGVLLine* line = Last<CGVLLine>(mgr);
    ASSERT_TRUE(line->IsSnapped());
    EXPECT_NEAR(line->ExactCoord(1).x(), kBarLeft, 0.05);
    EXPECT_NEAR(line->ExactCoord(0).x(), kBarRight, 0.05);
    EXPECT_EQ(line->m_arCoord, (std::vector<QPoint> { { 141, 32 }, { 40, 28 } })) << "the handles follow";
    EXPECT_NEAR(line->GetLength(), (kBarRight - kBarLeft) * std::hypot(95, 4) / 95 * 0.01, 0.0007);
    // Two ends of about 0.05 pixel each, expanded twice, at 0.01 mm a pixel.
    EXPECT_GT(line->LengthUncertainty(), 0.001);
    EXPECT_LT(line->LengthUncertainty(), 0.003);
    EXPECT_TRUE(Matches(line->LabelText(), "L=1\\.00[345]±0\\.00[12][0-9]mm"))
        << line->LabelText().toStdString();
    EXPECT_EQ(ExportCsv(mgr),
        QByteArray("No.,Type,Result,Unit\n1,Line distance,") + QByteArray::number(line->GetLength(), 'f', 3)
            + ", mm\n");

    // Moved with snapping off, the line is a plain one again; moved with it
    // on, it finds the edges again.
    on = false;
    Drag(mgr, 9, { 90, 30 }, { { 91, 30 }, { 92, 31 } });
    EXPECT_FALSE(line->IsSnapped());
    EXPECT_EQ(line->LabelText(), "L=1.011mm");
    on = true;
    Drag(mgr, 9, { 90, 31 }, { { 91, 31 }, { 89, 31 } });
    EXPECT_TRUE(line->IsSnapped());
    EXPECT_NEAR(line->ExactCoord(1).x(), kBarLeft, 0.05);

    // Ends that find no edge within reach stay where the mouse left them.
    Drag(mgr, 2, { 5, 150 }, { { 6, 150 }, { 25, 150 } });
    EXPECT_FALSE(Last<CGVLLine>(mgr)->IsSnapped());
    EXPECT_EQ(Last<CGVLLine>(mgr)->m_arCoord, (std::vector<QPoint> { { 25, 150 }, { 6, 150 } }));
    EXPECT_EQ(Last<CGVLLine>(mgr)->LabelText(), "L=0.190mm");
}

TEST_F(SnapFixture, CirclesFindTheirRimToAFractionOfAPixel)
{
    // Centre and rim: the rim point finds its edge along the drag, the
    // opposite rim its own, and the centre goes midway.
    Drag(mgr, 6, { 101, 111 }, { { 102, 111 }, { 131, 111 } });
    CGVLCircle* circle = Last<CGVLCircle>(mgr);
    ASSERT_TRUE(circle->IsSnapped());
    EXPECT_NEAR(circle->ExactCoord(0).x(), kDisc.x(), 0.05);
    EXPECT_NEAR(circle->ExactRadius(), kDiscRadius, 0.05);
    EXPECT_TRUE(Matches(circle->RadiusText(), "R=0\\.30[34]±0\\.000[0-9]+mm"))
        << circle->RadiusText().toStdString();

    // Through three points: each finds the rim along its line from the centre.
    Clicks(mgr, 7, { { 131, 111 }, { 100, 81 }, { 72, 125 } });
    CGVLCircleT* tri = Last<CGVLCircleT>(mgr);
    ASSERT_TRUE(tri->IsSnapped());
    const CGVLCircleT::ExactCircle fit
        = CGVLCircleT::Circumcircle(tri->ExactCoord(0), tri->ExactCoord(1), tri->ExactCoord(2));
    EXPECT_NEAR(fit.centre.x(), kDisc.x(), 0.1);
    EXPECT_NEAR(fit.centre.y(), kDisc.y(), 0.1);
    EXPECT_NEAR(tri->ExactRadius(), kDiscRadius, 0.1);
    EXPECT_GT(tri->RadiusUncertainty(), 0.0);
    EXPECT_TRUE(Matches(tri->RadiusText(), "R=0\\.30[345]±0\\.00[0-9]+mm"))
        << tri->RadiusText().toStdString();

    // Snapping off: the three clicks as they fell, labels as always.
    on = false;
    Clicks(mgr, 7, { { 131, 111 }, { 100, 81 }, { 72, 125 } });
    EXPECT_FALSE(Last<CGVLCircleT>(mgr)->IsSnapped());
    EXPECT_FALSE(Last<CGVLCircleT>(mgr)->RadiusText().contains(QChar(0x00B1)));
}
