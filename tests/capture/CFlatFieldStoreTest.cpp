#include "capture/CFlatFieldStore.h"

#include "image/FlatField.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QImage Blank(int width, int height)
{
    QImage blank(width, height, QImage::Format_RGB888);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            blank.setPixel(x, y, qRgb(150 + x % 40, 160 + y % 30, 170));
    return blank;
}

} // namespace

// A kept blank field comes back for its camera at its size, and for no other
// camera or size; the switch is off until turned on and stays as set.
TEST(CFlatFieldStore, KeptPerCameraAndSize)
{
    QTemporaryDir dir;
    const CFlatFieldStore store(dir.filePath("FlatFields"));
    const QString camera = QStringLiteral("Simulated Microscope Camera");
    EXPECT_EQ(store.Correction(camera, 64, 48), nullptr) << "nothing kept yet";
    EXPECT_FALSE(store.Enabled());

    QString error;
    ASSERT_TRUE(store.Save(camera, Blank(64, 48), &error)) << error.toStdString();
    ASSERT_TRUE(store.Save(QStringLiteral("USB Camera #1234"), Blank(32, 24), &error));
    const auto field = store.Correction(camera, 64, 48);
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->Width(), 64u);
    EXPECT_EQ(field->Height(), 48u);
    EXPECT_EQ(store.Blank(camera, 64, 48).convertToFormat(QImage::Format_RGB888), Blank(64, 48))
        << "kept without loss";

    EXPECT_EQ(store.Correction(QStringLiteral("Simulated Microscope Camera 2"), 64, 48), nullptr);
    EXPECT_EQ(store.Correction(camera, 48, 64), nullptr);
    EXPECT_EQ(store.Correction(camera, 32, 24), nullptr) << "the other camera's size";
    EXPECT_NE(store.Correction(QStringLiteral("USB Camera #1234"), 32, 24), nullptr);
    // Another resolution of the same camera is kept beside it.
    ASSERT_TRUE(store.Save(camera, Blank(64, 32), &error));
    EXPECT_NE(store.Correction(camera, 64, 32), nullptr);
    EXPECT_NE(store.Correction(camera, 64, 48), nullptr);

    store.SetEnabled(true);
    EXPECT_TRUE(CFlatFieldStore(dir.filePath("FlatFields")).Enabled());
    store.SetEnabled(false);
    EXPECT_FALSE(CFlatFieldStore(dir.filePath("FlatFields")).Enabled());
}

// A file that is no picture, or a picture of another size under the name,
// gives no correction rather than a wrong one.
TEST(CFlatFieldStore, DamagedFilesGiveNone)
{
    QTemporaryDir dir;
    const CFlatFieldStore store(dir.filePath("FlatFields"));
    QString error;
    ASSERT_TRUE(store.Save(QStringLiteral("A"), Blank(20, 10), &error));
    ASSERT_TRUE(QFile::rename(
        store.FileFor(QStringLiteral("A"), 20, 10), store.FileFor(QStringLiteral("A"), 30, 10)));
    EXPECT_EQ(store.Correction(QStringLiteral("A"), 30, 10), nullptr);
    QFile junk(store.FileFor(QStringLiteral("B"), 20, 10));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write("not a picture");
    junk.close();
    EXPECT_EQ(store.Correction(QStringLiteral("B"), 20, 10), nullptr);
}
