#include "MeasureFrameFixture.h"
#include "SyntheticSpecimen.h"
#include "measure/CGVLElemMgr.h"
#include "measure/MeasurementXmp.h"

// The pictures of a scan open as one picture document in the first one's
// scale and calibration; a picture that fits nowhere is named and nothing opens.
TEST_F(MeasureFrameTest, StitchedPicturesOpenAsOneCalibratedDocument)
{
    Start(false);
    messages.clear(); // no camera here
    const SyntheticSpecimen specimen(9);
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
    ASSERT_TRUE(SyntheticSpecimen(10).View(0, 0, 180, 140).save(other));
    const std::size_t open = frame->GetChildFrames().size();
    EXPECT_EQ(app->StitchPictures({ files[0], other, files[1] }), nullptr);
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages[0].contains(QStringLiteral("other.png cannot be placed")))
        << messages[0].toStdString();
    EXPECT_EQ(frame->GetChildFrames().size(), open);
    messages.clear();
}
