// "Analyze Particles" in the program: outlines as shapes, one undo step, the
// results window and its export, the dialog's options.
#include "MeasureFrameFixture.h"
#include "app/CommandTable.h"
#include "measure/CGVLElemMgr.h"
#include "ui/CParticleResultsDlg.h"
#include "ui/CParticlesDlg.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QSpinBox>
#include <QTableWidget>

namespace {

// Three dark squares of 100, 400 and 36 pixels on a light picture.
QImage Grains()
{
    QImage picture(160, 120, QImage::Format_RGB32);
    picture.fill(qRgb(220, 215, 210));
    const QRect squares[] = { { 10, 10, 10, 10 }, { 60, 20, 20, 20 }, { 100, 80, 6, 6 } };
    for (const QRect& r : squares)
        for (int y = r.top(); y <= r.bottom(); ++y)
            for (int x = r.left(); x <= r.right(); ++x)
                picture.setPixel(x, y, qRgb(30, 40, 50));
    return picture;
}

} // namespace

TEST_F(MeasureFrameTest, AnalyzeParticlesAddsOutlinesAsOneUndoStepAndShowsTheResults)
{
    Start();
    auto* doc = qobject_cast<CMeasureDoc*>(app->OpenPictureDocument(Grains(), QStringLiteral("Grains")));
    ASSERT_NE(doc, nullptr);
    ASSERT_TRUE(frame->QueryCommand(ID_MEASURE_PARTICLES).IsEnabled());
    doc->GetElemMgr().SetUnit({ 0, 0.5, 0.5, 100, 100 });
    CGVLElemMgr::Appearance look = doc->GetElemMgr().GetAppearance();
    look.precision = 2;
    doc->GetElemMgr().SetAppearance(look);
    ParticleOptions options;
    options.method = GrayThreshold::Method::Otsu;
    options.dark = true;
    EXPECT_EQ(doc->AnalyzeParticles(options), 3);
    EXPECT_EQ(ShapeTypes(*doc), (std::vector<int> { 9, 5, 5, 5 }));
    {
        const auto lock = doc->GetElemMgr().Lock();
        EXPECT_DOUBLE_EQ(doc->GetElemMgr().m_arShape[2]->GetArea(), 100.0); // 400 px of 0.25 um2
    }

    CParticleResultsDlg* results = doc->GetParticleResults();
    ASSERT_NE(results, nullptr);
    EXPECT_TRUE(results->isVisible());
    ASSERT_EQ(results->Table()->rowCount(), 3);
    // 25, 100 and 9 um2 of a picture of 4800 um2.
    EXPECT_EQ(results->Summary()->text(),
        QStringLiteral(
            "3 particles, mean area 44.67 um2 (standard deviation 48.58), total 134.00 um2, 2.79 % of "
            "the picture"));
    // Sorted by area, largest first, by the number and not the text.
    results->Table()->sortItems(1, Qt::DescendingOrder);
    EXPECT_EQ(results->Table()->item(0, 1)->text(), QStringLiteral("100.00"));
    EXPECT_EQ(results->Table()->item(2, 1)->text(), QStringLiteral("9.00"));
    const QString csv = home.filePath("particles.csv");
    ASSERT_TRUE(results->ExportCsv(csv));
    QFile file(csv);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().startsWith("No.,Area,Perimeter,Diameter,Circularity,X,Y,Unit\n1,25.00,"));

    // All outlines go in one step and come back in one.
    ASSERT_TRUE(frame->RouteCommand(ID_EDIT_UNDO));
    EXPECT_EQ(ShapeTypes(*doc), std::vector<int> { 9 });
    ASSERT_TRUE(frame->RouteCommand(ID_EDIT_REDO));
    EXPECT_EQ(ShapeTypes(*doc), (std::vector<int> { 9, 5, 5, 5 }));

    // A second analysis replaces the window; one that finds nothing adds no step.
    options.minArea = 1e6;
    EXPECT_EQ(doc->AnalyzeParticles(options), 0);
    EXPECT_EQ(ShapeTypes(*doc), (std::vector<int> { 9, 5, 5, 5 }));
    ASSERT_TRUE(frame->RouteCommand(ID_EDIT_UNDO));
    EXPECT_EQ(ShapeTypes(*doc), std::vector<int> { 9 });

    // The live document analyses the camera's next frame.
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    ASSERT_NE(live, nullptr);
    options.minArea = 0;
    EXPECT_GE(live->AnalyzeParticles(options), 0);
    EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();
}

TEST_F(MeasureFrameTest, ParticlesDialogGivesTheOptionsSet)
{
    ParticleOptions initial;
    initial.method = GrayThreshold::Method::Triangle;
    initial.watershed = true;
    CParticlesDlg dialog(initial);
    EXPECT_EQ(dialog.MethodBox()->currentIndex(), 3);
    EXPECT_FALSE(dialog.LowBox()->isEnabled()) << "an automatic threshold finds the range";
    EXPECT_TRUE(dialog.Options().watershed);
    EXPECT_EQ(dialog.Options().method, GrayThreshold::Method::Triangle);
    dialog.MethodBox()->setCurrentIndex(0);
    EXPECT_TRUE(dialog.LowBox()->isEnabled());
    dialog.LowBox()->setValue(200);
    dialog.HighBox()->setValue(40);
    dialog.WatershedBox()->setChecked(false);
    const ParticleOptions set = dialog.Options();
    EXPECT_FALSE(set.method.has_value());
    EXPECT_EQ(set.low, 40);
    EXPECT_EQ(set.high, 200);
    EXPECT_FALSE(set.watershed);
    EXPECT_TRUE(std::isinf(set.maxArea)) << "the largest area means no limit";
}
