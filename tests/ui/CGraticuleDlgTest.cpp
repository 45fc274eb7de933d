#include "ui/CGraticuleDlg.h"

#include "ui/GraticulePicture.h"

#include <gtest/gtest.h>

TEST(GraticuleDialog, ShowsThePixelSizeWithItsUncertaintyAndOnlyAcceptsAFoundScale)
{
    CGraticuleDlg dialog(GraticulePicture(QImage::Format_RGB32, true), QRect(0, 0, 200, 100));
    // 0.01 mm per 8 pixels.
    ASSERT_TRUE(dialog.CanAccept()) << dialog.ShownResult().toStdString();
    EXPECT_NEAR(dialog.Fit().perPixel, 1.25, 1e-3);
    EXPECT_TRUE(dialog.ShownResult().startsWith(QStringLiteral("1 px = 1.250")));
    EXPECT_TRUE(dialog.ShownResult().contains(QStringLiteral(" µm ± ")));
    // Of the 61 ticks, those whose surroundings are cut by the scale's ends may go.
    const int ticks = int(dialog.Fit().ticks.size());
    EXPECT_GE(ticks, 57);
    EXPECT_TRUE(dialog.ShownResult().contains(QStringLiteral("%1 ticks, scale at 0.0°").arg(ticks)))
        << dialog.ShownResult().toStdString();

    // Another division value scales the result; a word is no value.
    dialog.SetDivisionMm(QStringLiteral("0.002"));
    EXPECT_NEAR(dialog.Fit().perPixel, 0.25, 1e-3);
    dialog.SetDivisionMm(QStringLiteral("ten"));
    EXPECT_FALSE(dialog.CanAccept());
    dialog.SetDivisionMm(QStringLiteral("0.01"));
    EXPECT_TRUE(dialog.CanAccept());

    // Only inside the ruler, which lies away from the scale: nothing.
    dialog.SetInsideRuler(true);
    EXPECT_FALSE(dialog.CanAccept());
    EXPECT_EQ(dialog.ShownResult(), dialog.Fit().reason);
    dialog.SetInsideRuler(false);
    EXPECT_TRUE(dialog.CanAccept());

    QImage blank(640, 400, QImage::Format_RGB32);
    blank.fill(Qt::white);
    CGraticuleDlg nothing(blank, QRect());
    EXPECT_FALSE(nothing.CanAccept());
    EXPECT_FALSE(nothing.ShownResult().isEmpty());
}
