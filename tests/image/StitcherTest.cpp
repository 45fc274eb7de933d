#include "image/Stitcher.h"

#include "SyntheticSlide.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr int kW = 200;
constexpr int kH = 150;

} // namespace

TEST(Stitcher, PairShiftRecoversPlantedSubPixelShifts)
{
    const SyntheticSlide specimen(7);
    const QImage reference = specimen.View(300, 200, kW, kH);
    // Small and large, both signs, down to a quarter of the picture in common.
    const QPointF shifts[] = { { 0.37, -0.81 }, { 12.5, 3.25 }, { -47.3, 21.9 }, { 120.6, -8.4 },
        { -33.1, -95.7 }, { 130.2, 40.3 } };
    for (const QPointF& shift : shifts) {
        const QImage moving = specimen.View(300 + shift.x(), 200 + shift.y(), kW, kH);
        const std::optional<QPointF> found = Stitcher::PairShift(reference, moving);
        ASSERT_TRUE(found.has_value()) << shift.x() << "," << shift.y();
        EXPECT_NEAR(found->x(), shift.x(), 0.05) << shift.x() << "," << shift.y();
        EXPECT_NEAR(found->y(), shift.y(), 0.05) << shift.x() << "," << shift.y();
    }
    // Another part of the specimen, and a view sharing only a sliver.
    EXPECT_FALSE(Stitcher::PairShift(reference, specimen.View(2000, 1500, kW, kH)).has_value());
    EXPECT_FALSE(Stitcher::PairShift(reference, specimen.View(300 + 190, 200 + 140, kW, kH)).has_value());
}

TEST(Stitcher, ScanIsPlacedAsTakenAndShadingEvenedOut)
{
    const SyntheticSlide specimen(11);
    // A serpentine scan of 3 x 2 views with 30-40 % overlap, uneven steps,
    // 35 % darker corners and the second row a little darker.
    const QPointF truth[]
        = { { 0.0, 0.0 }, { 131.3, 2.6 }, { 259.8, -1.7 }, { 262.4, 97.15 }, { 128.9, 99.5 }, { 1.2, 95.8 } };
    Stitcher stitcher;
    for (int i = 0; i < 6; ++i) {
        QImage view = specimen.View(truth[i].x(), truth[i].y(), kW, kH, 0.65, i < 3 ? 1.0 : 0.92);
        QString why;
        ASSERT_TRUE(stitcher.Add(view, &why)) << i << ": " << why.toStdString();
    }
    ASSERT_EQ(stitcher.Count(), 6);
    // The union starts at the leftmost and topmost view.
    const QPointF origin(0.0, -1.7);
    for (int i = 0; i < 6; ++i) {
        EXPECT_NEAR(stitcher.Position(i).x(), truth[i].x() - origin.x(), 0.1) << i;
        EXPECT_NEAR(stitcher.Position(i).y(), truth[i].y() - origin.y(), 0.1) << i;
    }
    EXPECT_EQ(stitcher.Size(), QSize(int(std::ceil(262.4 + kW)), int(std::ceil(99.5 + 1.7 + kH))));
    EXPECT_NEAR(stitcher.CornerShading(), 0.65, 0.05);

    // Evened out, the blend shows the specimen as the views' centres saw it,
    // across the seams too.
    const QImage mosaic = stitcher.Compose();
    ASSERT_EQ(mosaic.size(), stitcher.Size());
    double worst = 0.0;
    // Away from the union's ragged edge.
    for (int y = 16; y + 16 < mosaic.height(); y += 20) {
        for (int x = 16; x + 16 < mosaic.width(); x += 20) {
            const QRect area(x - 6, y - 6, 12, 12);
            double truthMean = 0.0;
            for (int v = area.top(); v <= area.bottom(); ++v)
                for (int u = area.left(); u <= area.right(); ++u) {
                    const double s = specimen.At(u + origin.x(), v + origin.y());
                    truthMean += 255.0 * s * (0.299 + 0.587 * 0.9 + 0.114 * 0.8);
                }
            truthMean /= area.width() * area.height();
            worst = std::max(worst, std::abs(MeanGray(mosaic, area) / truthMean - 1.0));
        }
    }
    EXPECT_LT(worst, 0.015);
    // A part is the same pixels as the whole.
    const QRect part(150, 40, 90, 120);
    EXPECT_EQ(stitcher.Compose(part), mosaic.copy(part));
}

TEST(Stitcher, PictureThatOverlapsNothingIsRefusedAndChangesNothing)
{
    const SyntheticSlide specimen(3);
    Stitcher stitcher;
    ASSERT_TRUE(stitcher.Add(specimen.View(0, 0, kW, kH)));
    ASSERT_TRUE(stitcher.Add(specimen.View(120.5, 10.25, kW, kH)));
    const QSize before = stitcher.Size();
    QString why;
    EXPECT_FALSE(stitcher.Add(specimen.View(900, 700, kW, kH), &why));
    EXPECT_FALSE(why.isEmpty());
    EXPECT_FALSE(stitcher.Add(QImage(), &why));
    EXPECT_EQ(stitcher.Count(), 2);
    EXPECT_EQ(stitcher.Size(), before);
    // Still placed against what came before it, not only the last one.
    EXPECT_TRUE(stitcher.Add(specimen.View(-60.75, 30, kW, kH)));
    EXPECT_NEAR(stitcher.Position(2).x(), 0.0, 0.1);
    EXPECT_NEAR(stitcher.Position(0).x(), 60.75, 0.1);
}

TEST(Stitcher, LongScanKeepsLittleMoreThanThePicturesAndFindsOldGroundAgain)
{
    const SyntheticSlide specimen(11);
    // Only the last two compared in full keep everything: most of a 5 x 3
    // serpentine is held reduced.
    Stitcher::Options options;
    options.preparedPictures = 2;
    Stitcher stitcher(options);
    std::vector<QPointF> truth;
    for (int row = 0; row < 3; ++row)
        for (int k = 0; k < 5; ++k) {
            const int column = row % 2 ? 4 - k : k;
            truth.emplace_back(118.0 * column + 0.37 * k, 88.0 * row - 0.21 * k);
        }
    const std::size_t pictureBytes = std::size_t(kW) * kH * 3;
    std::size_t heldAfterFive = 0;
    for (size_t i = 0; i < truth.size(); ++i) {
        QString why;
        ASSERT_TRUE(stitcher.Add(specimen.View(truth[i].x(), truth[i].y(), kW, kH), &why))
            << i << ": " << why.toStdString();
        if (i == 4)
            heldAfterFive = stitcher.HeldBytes();
    }
    for (int i = 0; i < stitcher.Count(); ++i) {
        const QPointF placed = stitcher.Position(i) - stitcher.Position(0);
        EXPECT_NEAR(placed.x(), truth[size_t(i)].x(), 0.1) << i;
        EXPECT_NEAR(placed.y(), truth[size_t(i)].y(), 0.1) << i;
    }
    // Kept in full, a tile this size holds some 17 times its picture.
    const double perTile = double(stitcher.HeldBytes() - heldAfterFive) / (stitcher.Count() - 5);
    EXPECT_LT(perTile, 3.0 * pictureBytes);

    // Back over the first row, long reduced: found where it lies, whether
    // the last place is known or tracking was lost, and kept there as well.
    const QPointF over(60.4, 20.7);
    const QImage back = specimen.View(over.x(), over.y(), kW, kH);
    for (const std::optional<QPointF>& near : { std::optional<QPointF>(), std::optional<QPointF>(over) }) {
        QString why;
        const Stitcher::Tracked tracked = stitcher.Track(back, 0.15, near, &why);
        ASSERT_TRUE(tracked.found) << why.toStdString();
        EXPECT_FALSE(tracked.added);
        EXPECT_NEAR(tracked.position.x(), over.x(), 0.1);
        EXPECT_NEAR(tracked.position.y(), over.y(), 0.1);
    }
    ASSERT_TRUE(stitcher.Add(back));
    const QPointF kept = stitcher.Position(stitcher.Count() - 1) - stitcher.Position(0);
    EXPECT_NEAR(kept.x(), over.x(), 0.1);
    EXPECT_NEAR(kept.y(), over.y(), 0.1);
}
