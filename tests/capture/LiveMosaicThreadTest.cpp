#include "capture/LiveMosaic.h"
#include "capture/SimStage.h"
#include "image/Stitcher.h"

#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace {

// The live stage's frames, small: shading, noise and a little jitter.
SimStage::Options LiveLike()
{
    SimStage::Options options;
    options.frame = QSize(320, 240);
    options.cornerShading = 0.75;
    options.jitter = 0.2;
    options.noise = 1.5;
    options.seed = 7;
    return options;
}

template <typename Predicate> bool Eventually(Predicate done)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!done()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::yield();
    }
    return true;
}

// Offers the frame until the worker takes it, then waits until it is done.
LiveMosaic::Status Track(LiveMosaic& mosaic, const QImage& frame)
{
    const int before = mosaic.State().tracked;
    EXPECT_TRUE(Eventually([&] { return mosaic.Offer(frame); }));
    EXPECT_TRUE(Eventually([&] { return mosaic.State().tracked > before; }));
    return mosaic.State();
}

} // namespace

// A hand scan right and down: every frame is placed where the stage put it,
// only frames over new ground become tiles, and the display copy covers them.
// A jump off the covered ground is skipped with a reason and changes nothing;
// back over covered ground, tracking picks up where the stage is.
TEST(LiveMosaic, TracksTheStageLosesTrackOffCoveredGroundAndPicksUpOnReturn)
{
    SimStage stage(LiveLike());
    LiveMosaic mosaic;
    stage.MoveTo(QPointF(100, 80));
    const SimStage::Frame first = stage.Capture();
    EXPECT_EQ(Track(mosaic, first.picture).tiles, 1);
    int frames = 1;
    const QPointF steps[] = { { 45.3, 2.1 }, { 44.8, -1.7 }, { 46.1, 0.4 }, { 0.2, 0.1 }, { 45.5, 3.2 },
        { 2.4, 41.7 }, { -1.3, 42.2 }, { -44.9, 1.1 } };
    for (const QPointF& step : steps) {
        stage.MoveBy(step);
        const SimStage::Frame frame = stage.Capture();
        const LiveMosaic::Status status = Track(mosaic, frame.picture);
        ++frames;
        ASSERT_FALSE(status.lost) << "frame " << frames << ": " << status.why.toStdString();
        EXPECT_NEAR(status.field.x(), frame.truth.x() - first.truth.x(), 0.3) << "frame " << frames;
        EXPECT_NEAR(status.field.y(), frame.truth.y() - first.truth.y(), 0.3) << "frame " << frames;
    }
    const LiveMosaic::Status scanned = mosaic.State();
    EXPECT_EQ(scanned.tracked, frames);
    EXPECT_EQ(scanned.skipped, 0);
    EXPECT_GT(scanned.tiles, 1);
    EXPECT_LT(scanned.tiles, frames) << "frames over covered ground are no tiles";
    EXPECT_EQ(scanned.frameSize, QSize(320, 240));

    const LiveMosaic::Preview shown = mosaic.Shown();
    ASSERT_FALSE(shown.picture.isNull());
    EXPECT_EQ(shown.scale, 1.0);
    EXPECT_TRUE(shown.area.contains(QRectF(QPointF(), QSizeF(320, 240))));
    EXPECT_TRUE(shown.area.contains(QRectF(scanned.field, QSizeF(320, 240))));
    EXPECT_NEAR(shown.picture.width(), shown.area.width(), 1.0);

    const QPointF covered = stage.Position();
    // Two fields on, where the slide's next micrometer lies in the frame as
    // the one at the start did.
    stage.MoveTo(first.truth + QPointF(640, 0));
    const LiveMosaic::Status lost = Track(mosaic, stage.Capture().picture);
    EXPECT_TRUE(lost.lost);
    EXPECT_EQ(lost.skipped, 1);
    EXPECT_FALSE(lost.why.isEmpty());
    EXPECT_EQ(lost.tiles, scanned.tiles);
    EXPECT_EQ(lost.field, scanned.field) << "the last placed field stays";

    stage.MoveTo(covered - QPointF(60.6, 20.2));
    const SimStage::Frame back = stage.Capture();
    const LiveMosaic::Status found = Track(mosaic, back.picture);
    EXPECT_FALSE(found.lost) << found.why.toStdString();
    EXPECT_NEAR(found.field.x(), back.truth.x() - first.truth.x(), 0.3);
    EXPECT_NEAR(found.field.y(), back.truth.y() - first.truth.y(), 0.3);

    Stitcher& stitcher = mosaic.Close();
    EXPECT_EQ(stitcher.Count(), found.tiles);
    EXPECT_FALSE(mosaic.Offer(back.picture)) << "closed";
}

// Frames offered faster than the worker takes them are dropped, not queued.
TEST(LiveMosaic, DropsFramesWhileBusy)
{
    SimStage stage(LiveLike());
    stage.MoveTo(QPointF(100, 80));
    const QImage frame = stage.Capture().picture;
    LiveMosaic mosaic;
    int taken = 0;
    for (int i = 0; i < 20; ++i)
        taken += mosaic.Offer(frame);
    EXPECT_GE(taken, 1);
    EXPECT_LT(taken, 20);
    EXPECT_TRUE(Eventually([&] { return mosaic.State().tracked == taken; }));
    EXPECT_FALSE(mosaic.Offer(QImage())) << "an empty frame is no frame";
}
