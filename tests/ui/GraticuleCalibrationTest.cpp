// "Detect from micrometer" in the calibration dialog: from the document's
// picture to the calibration record and a ruler data file.
#include "calibration/SvrFile.h"
#include "platform/MessageBox.h"
#include "ui/CGraticuleDlg.h"
#include "ui/FakeMeasureDocument.h"
#include "ui/GraticulePicture.h"

#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

struct GraticuleCalibration : testing::Test
{
    GraticuleCalibration()
    {
        doc.picture.FromQImage(GraticulePicture(QImage::Format_RGB888, false));
        doc.hasPicture = true;
        doc.imageSize = QSize(640, 400);
        doc.Ruler()->SetArms(QPoint(100, 300), QPoint(300, 100));
        dialog = std::make_unique<CRulerSettingDlg>(doc);
        CRulerSettingDlg::SetGraticuleDialogRunner([this](CGraticuleDlg& d) {
            shown.push_back(d.ShownResult());
            return accept && d.CanAccept();
        });
    }
    ~GraticuleCalibration() override { CRulerSettingDlg::SetGraticuleDialogRunner({}); }

    std::vector<QString> messages;
    ScopedMessageBoxHandler box { [this](const MessageBoxRequest& r) {
        messages.push_back(r.text);
        return int(IDOK);
    } };
    FakeMeasureDocument doc;
    FakeView view { doc };
    std::unique_ptr<CRulerSettingDlg> dialog;
    std::vector<QString> shown;
    bool accept = true;
};

} // namespace

TEST_F(GraticuleCalibration, AcceptedDetectionBecomesTheCalibrationAndItsFile)
{
    // The button opens the detection over the picture; accepting calibrates.
    QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("detectMicrometer")), Qt::LeftButton);
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_TRUE(shown[0].startsWith(QStringLiteral("1 px = 1.250"))) << shown[0].toStdString();
    EXPECT_EQ(doc.mgr.m_unit.m_rtUnit, 0);
    EXPECT_DOUBLE_EQ(doc.mgr.m_unit.m_dcxPerPixel, 1.25);
    EXPECT_DOUBLE_EQ(doc.mgr.m_unit.m_dcyPerPixel, 1.25);
    EXPECT_NEAR(doc.mgr.m_unit.m_dcxReal, 250.0, 0.05);
    // The ruler did not move; the result is saved as any calibration is.
    EXPECT_EQ(doc.Ruler()->GetArms(), std::make_pair(QPoint(100, 300), QPoint(300, 100)));
    QTemporaryDir dir;
    ASSERT_TRUE(dialog->SaveTo(dir.filePath(QStringLiteral("micro.svr"))));
    SvrData saved;
    ASSERT_EQ(SvrFile::Read(dir.filePath(QStringLiteral("micro")), saved), SvrFile::Status::Ok);
    EXPECT_EQ(saved.m_strXPerPixel, QStringLiteral("1.2500"));
    EXPECT_EQ(saved.m_nXLenth, 200);
}

TEST_F(GraticuleCalibration, UnitsZoomCancelAndNoPicture)
{
    // In mm four decimals would keep two digits: the calibration goes to um.
    dialog->SetUnitSelection(1);
    ASSERT_TRUE(dialog->DetectFromMicrometer());
    EXPECT_EQ(doc.mgr.m_unit.m_rtUnit, 0);
    EXPECT_DOUBLE_EQ(doc.mgr.m_unit.m_dcxPerPixel, 1.25);
    EXPECT_EQ(dialog->UnitLabel(), QStringLiteral("um"));

    // At 200 % an overlay pixel is half a picture pixel.
    doc.zoom = 1;
    ASSERT_TRUE(dialog->DetectFromMicrometer());
    EXPECT_DOUBLE_EQ(doc.mgr.m_unit.m_dcxPerPixel, 0.625);

    // Declined, or nothing to look at: the calibration stays.
    const CalibrationRecord before = doc.mgr.m_unit;
    accept = false;
    EXPECT_FALSE(dialog->DetectFromMicrometer());
    doc.hasPicture = false;
    accept = true;
    EXPECT_FALSE(dialog->DetectFromMicrometer());
    ASSERT_EQ(messages.size(), 1u);
    doc.hasPicture = true;
    QImage blank(640, 400, QImage::Format_RGB888);
    blank.fill(Qt::white);
    doc.picture.FromQImage(blank);
    EXPECT_FALSE(dialog->DetectFromMicrometer());
    EXPECT_EQ(doc.mgr.m_unit.m_dcxPerPixel, before.m_dcxPerPixel);
    EXPECT_EQ(doc.mgr.m_unit.m_dcxReal, before.m_dcxReal);
    EXPECT_EQ(doc.mgr.m_unit.m_rtUnit, before.m_rtUnit);
}
