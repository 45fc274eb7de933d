#include "ui/CMosaicPanel.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>

#include <algorithm>
#include <gtest/gtest.h>

namespace {

// 800 x 400 pixels of the plane, shown from a copy at half the size.
const QRectF kMosaicPlane(0, 0, 800, 400);

void Wheel(CMosaicPanel& panel, QPointF at, int notches)
{
    QWheelEvent event(at, panel.mapToGlobal(at), QPoint(), QPoint(0, 120 * notches), Qt::NoButton,
        Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&panel, &event);
}

void Mouse(CMosaicPanel& panel, QEvent::Type type, QPointF at, Qt::MouseButtons held)
{
    QMouseEvent event(type, at, panel.mapToGlobal(at),
        type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held, Qt::NoModifier);
    QApplication::sendEvent(&panel, &event);
}

void ExpectSamePoint(QPointF a, QPointF b)
{
    EXPECT_NEAR(a.x(), b.x(), 1e-6);
    EXPECT_NEAR(a.y(), b.y(), 1e-6);
}

} // namespace

TEST(CMosaicPanel, WheelZoomsAboutThePointerDragPansDoubleClickFits)
{
    CMosaicPanel panel;
    panel.resize(400, 300);
    QImage reduced(400, 200, QImage::Format_RGB888);
    reduced.fill(Qt::gray);
    panel.SetMosaic(reduced, kMosaicPlane, kMosaicPlane, QRectF(100, 100, 320, 256), false);
    ASSERT_EQ(panel.ShownArea(), kMosaicPlane);

    const QRectF room = panel.PictureRoom();
    const auto screenPerPlane = [&] { return room.width() / panel.ShownArea().width(); };
    const double fitted = std::min(room.width() / 800, room.height() / 400);
    const QPointF pointer(120, 90);
    const QPointF under = panel.PlaneAt(pointer);
    Wheel(panel, pointer, 1);
    EXPECT_NEAR(screenPerPlane(), 1.25 * fitted, 1e-9);
    ExpectSamePoint(panel.PlaneAt(pointer), under);
    // No closer than two screen pixels to a pixel of the reduced copy,
    // which is half a plane pixel.
    Wheel(panel, pointer, 40);
    EXPECT_NEAR(screenPerPlane(), 1.0, 1e-9);
    ExpectSamePoint(panel.PlaneAt(pointer), under);

    // The point grabbed follows the pointer.
    const QPointF grabbed = panel.PlaneAt({ 200, 150 });
    Mouse(panel, QEvent::MouseButtonPress, { 200, 150 }, Qt::LeftButton);
    Mouse(panel, QEvent::MouseMove, { 230, 140 }, Qt::LeftButton);
    ExpectSamePoint(panel.PlaneAt({ 230, 140 }), grabbed);
    // Dragged far off, the middle of the view stays on the mosaic.
    Mouse(panel, QEvent::MouseMove, { 5000, 4000 }, Qt::LeftButton);
    EXPECT_TRUE(kMosaicPlane.contains(panel.ShownArea().center()));

    // Out no further than all of it; a double click is all of it at once.
    Wheel(panel, pointer, -1);
    EXPECT_NEAR(screenPerPlane(), 0.8, 1e-9);
    Mouse(panel, QEvent::MouseButtonDblClick, pointer, Qt::LeftButton);
    EXPECT_EQ(panel.ShownArea(), kMosaicPlane);
    Wheel(panel, pointer, 2);
    Wheel(panel, pointer, -10);
    EXPECT_EQ(panel.ShownArea(), kMosaicPlane);
}
