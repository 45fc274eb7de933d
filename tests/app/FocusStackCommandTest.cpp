#include "FocusSeries.h"
#include "app/CommandTable.h"
#include "app/DlgSelectFile.h"
#include "app/MeasureFrameFixture.h"
#include "measure/MeasurementXmp.h"

#include <QLineEdit>
#include <QScopeGuard>
#include <QTimer>

namespace {

const QSize kSize(160, 120);
const CalibrationRecord kUnit { 0, 1.75, 1.8, 350, 360 };

class FocusStackCommandTest : public MeasureFrameTest
{
protected:
    // Three pictures drifting, each sharp in its third of the width; the
    // first keeps a calibration.
    QStringList SaveSeries()
    {
        const FrameWarp warps[] = { {}, { 1.5, -0.7, 1.005 }, { 3.1, -1.6, 1.01 } };
        QStringList paths;
        for (int i = 0; i < 3; ++i) {
            const QImage frame = Render(texture, kSize, warps[i], [i](double x, double) {
                return int(std::floor(x / (kSize.width() / 3.0))) == i ? 0.0 : 3.0;
            });
            paths << home.filePath(QStringLiteral("f%1.png").arg(i));
            EXPECT_TRUE(frame.save(paths.back()));
        }
        CGVLElemMgr mgr;
        mgr.SetUnit(kUnit);
        EXPECT_TRUE(MeasurementXmp::Write(paths.front(), mgr, false));
        return paths;
    }

    // Mean difference of the red channel from the sharp texture, inside.
    double ErrorOf(const QImage& picture) const
    {
        const QImage truth = Render(texture, kSize, {}, [](double, double) { return 0.0; });
        double sum = 0.0;
        int n = 0;
        for (int y = 8; y < kSize.height() - 8; ++y)
            for (int x = 8; x < kSize.width() - 8; ++x, ++n)
                sum += std::abs(qRed(picture.pixel(x, y)) - qRed(truth.pixel(x, y)));
        return sum / n;
    }

    const WaveTexture texture { 11 };
};

} // namespace

TEST_F(FocusStackCommandTest, TheFusionOpensAsAPictureDocumentWithTheFirstPicturesCalibration)
{
    Start(false);
    // Without a camera the program starts with an empty document and says so.
    const std::size_t before = frame->GetChildFrames().size();
    messages.clear();
    const QStringList paths = SaveSeries();
    EXPECT_TRUE(frame->QueryCommand(ID_PROCESS_FOCUS_STACK).IsEnabled());

    auto* doc = qobject_cast<CMeasureDoc*>(app->StackPictures(paths));
    ASSERT_NE(doc, nullptr) << messages.join('\n').toStdString();
    EXPECT_EQ(ActiveDoc(), doc);
    EXPECT_EQ(doc->GetTitle(), QStringLiteral("Stack 1"));
    EXPECT_FALSE(doc->IsLive());
    EXPECT_TRUE(doc->CanDraw());
    ASSERT_EQ(doc->GetImageSize(), kSize);
    const QImage blurred = Render(texture, kSize, {}, [](double, double) { return 3.0; });
    EXPECT_LT(ErrorOf(doc->GetPicture()->ToQImage()), ErrorOf(blurred) / 5);
    EXPECT_EQ(doc->GetElemMgr().GetUnit(), kUnit);
    EXPECT_TRUE(messages.isEmpty());

    // Through the menu: the open dialog, for several files, in name order.
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<DlgSelectFile*>(QApplication::activeModalWidget());
        if (!dialog) {
            ADD_FAILURE() << "no picture dialog";
            return;
        }
        const auto close = qScopeGuard([dialog] {
            if (dialog->isVisible())
                dialog->reject();
        });
        EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Focus Stack Pictures"));
        EXPECT_EQ(dialog->fileMode(), QFileDialog::ExistingFiles);
        EXPECT_TRUE(dialog->selectedNameFilter().startsWith(QStringLiteral("All pictures")));
        dialog->setDirectory(home.filePath(QString()));
        auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_NE(name, nullptr);
        name->setText(QStringLiteral("\"f2.png\" \"f0.png\" \"f1.png\""));
        QMetaObject::invokeMethod(dialog, "accept");
    });
    ASSERT_TRUE(frame->RouteCommand(ID_PROCESS_FOCUS_STACK));
    ASSERT_EQ(frame->GetChildFrames().size(), before + 2);
    EXPECT_EQ(ActiveDoc()->GetTitle(), QStringLiteral("Stack 2"));
    EXPECT_EQ(ActiveDoc()->GetElemMgr().GetUnit(), kUnit) << "the first in name order gives the calibration";
}

TEST_F(FocusStackCommandTest, PicturesThatDoNotFitOpenNothingAndSayWhy)
{
    Start(false);
    const std::size_t before = frame->GetChildFrames().size();
    messages.clear();
    const QStringList paths = SaveSeries();
    const QString small = home.filePath("small.png");
    ASSERT_TRUE(Render(texture, kSize / 2, {}, [](double, double) { return 0.0; }).save(small));
    const QString junk = home.filePath("junk.png");
    QFile file(junk);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("not a picture");
    file.close();

    EXPECT_EQ(app->StackPictures({ paths[0], small }), nullptr);
    EXPECT_EQ(app->StackPictures({ paths[0], junk }), nullptr);
    EXPECT_EQ(app->StackPictures({ paths[0] }), nullptr);
    EXPECT_EQ(frame->GetChildFrames().size(), before);
    ASSERT_EQ(messages.size(), 3);
    EXPECT_TRUE(
        messages[0].startsWith(QStringLiteral("small.png does not fit the series: The picture is 80 x 60")))
        << messages[0].toStdString();
    EXPECT_TRUE(messages[1].startsWith(QStringLiteral("junk.png could not be read")))
        << messages[1].toStdString();
    EXPECT_TRUE(messages[2].contains(QStringLiteral("at least two pictures"))) << messages[2].toStdString();
    messages.clear();
}
