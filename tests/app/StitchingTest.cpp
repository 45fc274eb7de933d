#include "MeasureFrameFixture.h"
#include "SyntheticSlide.h"
#include "measure/CGVLElemMgr.h"
#include "measure/MeasurementXmp.h"

#include <QTest>

// The pictures of a scan open as one picture document in the first one's
// scale and calibration; a picture that fits nowhere is named and nothing opens.
TEST_F(MeasureFrameTest, StitchedPicturesOpenAsOneCalibratedDocument)
{
    Start(false);
    messages.clear(); // no camera here
    const SyntheticSlide specimen(9);
    const QPointF at[] = { { 0, 0 }, { 110.5, -4.25 }, { 100, 90.6 } };
    QStringList files;
    for (const QPointF& p : at) {
        files << home.filePath(QStringLiteral("scan-%1.png").arg(files.size() + 1));
        ASSERT_TRUE(specimen.View(p.x(), p.y(), 180, 140).save(files.back()));
    }
    const CalibrationRecord unit { 0, 0.5, 0.5, 100.0, 100.0 };
    CGVLElemMgr stored;
    stored.SetUnit(unit);
    ASSERT_TRUE(MeasurementXmp::Write(files[0], stored, false));

    auto* doc = qobject_cast<CMeasureDoc*>(app->StitchPictures(files));
    ASSERT_NE(doc, nullptr) << messages.join('\n').toStdString();
    EXPECT_EQ(doc->GetImageSize(), QSize(291, 235)); // 110.5 + 180 by 4.25 + 90.6 + 140
    EXPECT_EQ(doc->GetTitle(), QStringLiteral("Mosaic of 3 pictures"));
    EXPECT_EQ(doc->GetElemMgr().GetUnit(), unit);
    EXPECT_FALSE(doc->IsLive());
    EXPECT_TRUE(messages.isEmpty());

    const QString other = home.filePath(QStringLiteral("other.png"));
    ASSERT_TRUE(SyntheticSlide(10).View(0, 0, 180, 140).save(other));
    const std::size_t open = frame->GetChildFrames().size();
    EXPECT_EQ(app->StitchPictures({ files[0], other, files[1] }), nullptr);
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages[0].contains(QStringLiteral("other.png cannot be placed")))
        << messages[0].toStdString();
    EXPECT_EQ(frame->GetChildFrames().size(), open);
    messages.clear();
}

// On the simulated camera's stage the arrow keys look further over the slide,
// a tenth of the field a press and half with Shift; without the stage they
// move nothing.
TEST_F(MeasureFrameTest, ArrowKeysMoveTheSimulatedStage)
{
    Start();
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    CMeasureView* view = ActiveView();
    ASSERT_NE(view, nullptr);
    GstElement* camera = live->GetGraph().DeviceElement();
    ASSERT_NE(camera, nullptr);
    const QSize field = live->GetImageSize();
    auto position = [camera] {
        double x = 0.0, y = 0.0;
        g_object_get(camera, "stage-x", &x, "stage-y", &y, nullptr);
        return QPointF(x, y);
    };
    const QPointF still = position();
    QTest::keyClick(view, Qt::Key_Right);
    EXPECT_EQ(position(), still) << "no stage, nothing moves";

    g_object_set(camera, "stage", TRUE, nullptr);
    ASSERT_TRUE(WaitFor([&] { return position().x() > 0.0; }, 30000));
    const QPointF start = position();
    QTest::keyClick(view, Qt::Key_Right);
    QTest::keyClick(view, Qt::Key_Down, Qt::ShiftModifier);
    const QPointF moved = position();
    EXPECT_NEAR(moved.x() - start.x(), 0.1 * field.width(), 0.5);
    EXPECT_NEAR(moved.y() - start.y(), 0.5 * field.height(), 0.5);
    QTest::keyClick(view, Qt::Key_Left);
    QTest::keyClick(view, Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_NEAR(position().x(), start.x(), 0.5);
    EXPECT_NEAR(position().y(), start.y(), 0.5);
}
