// The simulated camera as the judge of calibration and edge snapping: its
// ground truth, its harder pictures, and the measuring engines on them.
#include "calibration/GraticuleDetector.h"
#include "capture/CSimScene.h"
#include "image/EdgeLocator.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

CSimScene::Controls Still(double rotation = 0.0)
{
    CSimScene::Controls c;
    c.drift = false;
    c.noise = false;
    c.rotation = rotation;
    return c;
}

int Luma(const QImage& frame, QPointF p)
{
    return qGray(frame.pixel(int(std::lround(p.x())), int(std::lround(p.y()))));
}

} // namespace

TEST(SimCameraJudge, GroundTruthPointsLandOnTheirObjectsOnATurnedDriftingSlide)
{
    // The documented example: tick 0 at 1280 x 1024, still and level.
    CSimScene still(1280, 1024);
    still.SetControls(Still());
    EXPECT_EQ(still.FramePoint(QPointF(500, 620), 0), QPointF(239.5, 233.5));

    for (double rotation : { 0.0, 3.0, 30.0, -12.0 }) {
        SCOPED_TRACE(rotation);
        CSimScene scene(1280, 1024);
        CSimScene::Controls c = Still(rotation);
        c.drift = true;
        scene.SetControls(c);
        for (std::uint64_t frame : { 0u, 700u }) {
            const QImage image = scene.RenderRgb(frame);
            // On the 100 um ticks (dark), in the gaps beside them (light).
            for (int d = 0; d <= 100; d += 10) {
                EXPECT_LT(Luma(image, scene.FramePoint(QPointF(500 + 10 * d, 560), frame)), 90) << d;
                EXPECT_GT(Luma(image, scene.FramePoint(QPointF(505 + 10 * d, 560), frame)), 150) << d;
            }
            // Inside the rim of the 250 um particle and 4 um outside it.
            for (double a = 0; a < 360; a += 45) {
                const double r = a * 3.14159265358979 / 180;
                const QPointF dir(std::cos(r), std::sin(r));
                EXPECT_LT(Luma(image, scene.FramePoint(QPointF(1300, 880) + dir * 121, frame)), 110) << a;
                EXPECT_GT(Luma(image, scene.FramePoint(QPointF(1300, 880) + dir * 129, frame)), 150) << a;
            }
        }
    }
}

TEST(SimCameraJudge, HarderPicturesComeAndGoWithTheirControls)
{
    CSimScene scene(640, 480);
    scene.SetControls(Still());
    const QImage plain = scene.RenderRgb(0);

    CSimScene::Controls hard = Still(30.0);
    hard.noise = true;
    hard.noiseLevel = 10.0;
    hard.blur = 2.0;
    hard.unevenLight = 50;
    scene.SetControls(hard);
    const QImage harder = scene.RenderRgb(0);
    EXPECT_NE(plain, harder);
    // Light falls towards the right and the bottom: compare the background
    // near the left and right edges, away from the objects.
    const QImage unevenOnly = [&] {
        CSimScene::Controls c = Still();
        c.vignetting = false;
        c.unevenLight = 50;
        scene.SetControls(c);
        return scene.RenderRgb(0);
    }();
    EXPECT_GT(qGray(unevenOnly.pixel(20, 20)), qGray(unevenOnly.pixel(620, 20)) + 60);
    EXPECT_GT(qGray(unevenOnly.pixel(20, 20)), qGray(unevenOnly.pixel(20, 460)) + 60);
    // Blur widens the dark run of a tick; noise spreads a flat background.
    CSimScene::Controls blurred = Still();
    blurred.blur = 3.0;
    scene.SetControls(blurred);
    const QImage soft = scene.RenderRgb(0);
    const QPointF tick = scene.FramePoint(QPointF(1000, 600), 0);
    EXPECT_GT(Luma(soft, tick), Luma(plain, tick) + 30);

    // Back to the defaults, the picture is the same to the byte as a new camera's.
    scene.SetControls(Still());
    EXPECT_EQ(scene.RenderRgb(0), plain);
    CSimScene fresh(640, 480);
    fresh.SetControls(Still());
    EXPECT_EQ(fresh.RenderRgb(0), plain);
}

TEST(SimCameraJudge, GraticuleIsFoundAtEverySizeTurnedNoisyBlurredAndAsJpeg)
{
    const struct
    {
        unsigned width;
        unsigned height;
        double rotation;
        double noise;
        double blur;
        int uneven;
        bool jpeg;
    } cases[] = {
        { 640, 480, 0.0, 0, 0, 0, false },
        { 1280, 1024, 3.0, 0, 0, 0, false },
        { 1600, 1200, 30.0, 0, 0, 0, false },
        // Defocus of 2 um: the same loss of contrast at every size.
        { 640, 480, 30.0, 8, 0.8, 40, false },
        { 1280, 1024, 0.0, 8, 1.6, 40, true },
        { 1600, 1200, 3.0, 8, 2.0, 0, true },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.width << " turned " << c.rotation << " noise " << c.noise);
        CSimScene scene(c.width, c.height);
        CSimScene::Controls controls = Still(c.rotation);
        controls.noise = c.noise > 0;
        controls.noiseLevel = c.noise;
        controls.blur = c.blur;
        controls.unevenLight = c.uneven;
        scene.SetControls(controls);
        const QImage frame = c.jpeg ? QImage::fromData(scene.RenderJpeg(0, 80), "JPEG") : scene.RenderRgb(0);
        const GraticuleFit fit = DetectGraticule(frame, 10.0);
        ASSERT_TRUE(fit.found) << fit.reason.toStdString();
        const double truth = CSimScene::MicrometresPerPixel(c.width);
        EXPECT_NEAR(fit.perPixel, truth, fit.perPixelU);
        EXPECT_LT(std::abs(fit.perPixel - truth) / truth, 0.001);
        EXPECT_NEAR(std::remainder(fit.angleDeg - c.rotation, 180.0), 0.0, 0.3);
        // The ticks it used are the micrometer's: on the scale's line.
        const QPointF a = scene.FramePoint(QPointF(500, 600), 0);
        const QPointF b = scene.FramePoint(QPointF(1500, 600), 0);
        const QPointF axis = (b - a) / std::hypot(b.x() - a.x(), b.y() - a.y());
        for (const QPointF& t : fit.ticks) {
            const QPointF v = t - a;
            EXPECT_LT(std::abs(v.x() * axis.y() - v.y() * axis.x()), 60.0 / truth);
        }
    }

    // Where the particles and the square are, there is no micrometer.
    CSimScene scene(1280, 1024);
    scene.SetControls(Still());
    const QPointF corner = scene.FramePoint(QPointF(380, 780), 0);
    const QPointF far = scene.FramePoint(QPointF(1480, 1300), 0);
    const GraticuleFit none = DetectGraticule(scene.RenderRgb(0), 10.0, QRectF(corner, far).toRect());
    EXPECT_FALSE(none.found);
}

TEST(SimCameraJudge, SnappedParticleDiametersAndSquareSidesMatchTheGroundTruth)
{
    CSimScene scene(1280, 1024);
    CSimScene::Controls c = Still(3.0);
    c.noise = true;
    scene.SetControls(c);
    const QImage gray = scene.RenderRgb(0).convertToFormat(QImage::Format_Grayscale8);
    const double umpp = CSimScene::MicrometresPerPixel(1280);
    const QPointF ux = scene.FramePoint(QPointF(1, 0), 0) - scene.FramePoint(QPointF(0, 0), 0);
    const QPointF dir = ux / std::hypot(ux.x(), ux.y());
    const struct
    {
        QPointF centreUm;
        double widthUm;
    } objects[] = { { { 560, 880 }, 50 }, { { 740, 880 }, 100 }, { { 980, 880 }, 150 },
        { { 1300, 880 }, 250 }, { { 650, 1180 }, 200 } };
    for (const auto& o : objects) {
        SCOPED_TRACE(o.widthUm);
        const QPointF centre = scene.FramePoint(o.centreUm, 0);
        const double half = o.widthUm / 2 / umpp;
        // Ends dragged a pixel or two off the edges.
        const auto a = LocateEdge(gray, centre - dir * (half - 1.6), dir);
        const auto b = LocateEdge(gray, centre + dir * (half + 1.3), dir);
        ASSERT_TRUE(a && b);
        const double length
            = std::hypot(b->position.x() - a->position.x(), b->position.y() - a->position.y());
        EXPECT_NEAR(length, 2 * half, 0.2);
        EXPECT_NEAR(length, 2 * half, 2 * std::hypot(a->sigma, b->sigma) + 0.05);
    }
}
