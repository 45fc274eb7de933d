#include "measure/CPictureSaver.h"

#include "image/FCObjImage.h"
#include "measure/CGVLElemMgr.h"
#include "measure/MeasurementXmp.h"
#include "platform/MessageBox.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

FCObjImage Gradient(int width, int height)
{
    FCObjImage picture(width, height, 24);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.SetPixelColor(x, y, qRgb(x % 256, y % 256, (x + y) % 256));
    return picture;
}

} // namespace

// The save without a document or a user: enlargement is the caller's choice
// for any picture, nothing is shown, and the outcome is told by the getters.
TEST(CPictureSaverTest, EnlargesAnyPictureAndReportsFailuresWithoutShowingThem)
{
    int boxes = 0;
    ScopedMessageBoxHandler box([&boxes](const MessageBoxRequest&) {
        ++boxes;
        return int(IDOK);
    });
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    CGVLElemMgr mgr;
    mgr.SetUnit({ 0, 0.8, 0.6, 10.0, 10.0 });
    const FCObjImage clean = Gradient(640, 480);

    // Enlargement 3: the top-left 1280 x 960 (all of this picture) becomes
    // 2048 x 1536, and a pixel of the picture covers fewer micrometres.
    CPictureSaver saver(
        mgr, SaveOverlay { true, false, false, false, false }, SaveTexts { "t", "s", "a", "c" });
    saver.SetEnlargement(3);
    const QString png = dir.filePath("big.png");
    ASSERT_TRUE(saver.Save(clean, png)) << saver.ErrorString().toStdString();
    EXPECT_FALSE(saver.XmpFailed()) << saver.XmpError().toStdString();
    EXPECT_FALSE(saver.SummaryFailed());
    FCObjImage written;
    ASSERT_TRUE(written.Load(png));
    EXPECT_EQ(written.Width(), 2048);
    EXPECT_EQ(written.Height(), 1536);
    const MeasurementXmp::Stored stored = MeasurementXmp::Read(png);
    ASSERT_TRUE(stored.unit.has_value());
    EXPECT_NEAR(stored.unit->m_dcxPerPixel, 0.8 * 640 / 2048, 1e-9);
    EXPECT_NEAR(stored.unit->m_dcyPerPixel, 0.6 * 480 / 1536, 1e-9);

    // Any other value keeps the size.
    saver.SetEnlargement(1);
    ASSERT_TRUE(saver.Save(clean, dir.filePath("same.png")));
    ASSERT_TRUE(written.Load(dir.filePath("same.png")));
    EXPECT_EQ(written.Width(), 640);

    // A folder that is not there: the picture and the summary both fail,
    // and the same saver used again starts from a clean slate.
    const QString missing = dir.filePath("no/such/folder/picture.jpg");
    EXPECT_FALSE(saver.Save(clean, missing));
    EXPECT_FALSE(saver.ErrorString().isEmpty());
    EXPECT_TRUE(saver.SummaryFailed());
    EXPECT_FALSE(saver.XmpFailed());
    EXPECT_FALSE(QFile::exists(missing));
    ASSERT_TRUE(saver.Save(clean, dir.filePath("ok.jpg")));
    EXPECT_TRUE(saver.ErrorString().isEmpty());
    EXPECT_FALSE(saver.SummaryFailed());
    EXPECT_EQ(boxes, 0);
}
