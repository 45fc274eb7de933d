#include "ui/CHistogramPanel.h"

#include <QCheckBox>
#include <QImage>
#include <QLabel>

#include <gtest/gtest.h>

// In proportion on the linear scale; on the log scale a single sample stands
// clear of the axis while the largest count still fills the plot.
TEST(CHistogramPanel, LinearAndLogHeights)
{
    EXPECT_DOUBLE_EQ(CHistogramPanel::Height(50, 200, false), 0.25);
    EXPECT_DOUBLE_EQ(CHistogramPanel::Height(200, 200, false), 1.0);
    EXPECT_DOUBLE_EQ(CHistogramPanel::Height(200, 200, true), 1.0);
    EXPECT_GT(CHistogramPanel::Height(1, 10000, true), 0.05);
    EXPECT_LT(CHistogramPanel::Height(1, 10000, false), 0.001);
    EXPECT_EQ(CHistogramPanel::Height(0, 10000, true), 0.0);
    EXPECT_EQ(CHistogramPanel::Height(5, 0, false), 0.0) << "nothing to scale by";
    EXPECT_EQ(CHistogramPanel::Height(500, 100, false), 1.0)
        << "an end bin beyond the scale stops at the top";
}

// The clipped shares as the label shows them, and the curves drawn in their
// colours only while there is a histogram.
TEST(CHistogramPanel, ShowsClippingAndCurves)
{
    CHistogramPanel panel;
    panel.resize(300, 180);
    EXPECT_EQ(panel.findChild<QLabel*>("histogramClipped")->text(), "No live picture");
    FrameHistogram h;
    h.samples = 2000;
    h.overexposed = 50;
    h.underexposed = 1;
    for (int v = 40; v < 200; ++v)
        h.red[v] = h.green[v] = h.blue[v] = h.luma[v] = 10;
    h.red[255] = 50;
    panel.SetHistogram(h);
    EXPECT_EQ(panel.findChild<QLabel*>("histogramClipped")->text(), "Clipped: 2.5 % bright, 0.1 % dark");

    const auto redPixels = [&panel] {
        const QImage shot = panel.grab().toImage();
        int n = 0;
        for (int y = 0; y < shot.height(); ++y)
            for (int x = 0; x < shot.width(); ++x) {
                const QColor c = shot.pixelColor(x, y);
                n += c.red() > 120 && c.green() < 110 && c.blue() < 110;
            }
        return n;
    };
    EXPECT_GT(redPixels(), 20);
    panel.findChild<QCheckBox*>("histogramLog")->setChecked(true);
    EXPECT_TRUE(panel.LogScale());
    panel.SetHistogram(std::nullopt);
    EXPECT_EQ(redPixels(), 0);
}
