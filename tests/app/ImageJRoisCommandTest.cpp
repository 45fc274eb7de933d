// The shapes to ImageJ's ROI sets and back in the program: one undo step, and
// what cannot come in is told.
#include "MeasureFrameFixture.h"
#include "app/CommandTable.h"
#include "measure/CGVLElemMgr.h"
#include "measure/ImageJRois.h"
#include "measure/ShapesJson.h"

#include <QFile>

TEST_F(MeasureFrameTest, ImageJRoisGoOutAndComeBackAsShapes)
{
    Start();
    QImage plain(200, 150, QImage::Format_RGB32);
    plain.fill(Qt::white);
    auto* from = qobject_cast<CMeasureDoc*>(app->OpenPictureDocument(plain, QStringLiteral("From")));
    ASSERT_NE(from, nullptr);
    const QString set = home.filePath("RoiSet.zip");
    EXPECT_FALSE(from->ExportRois(set));
    EXPECT_EQ(messages, QStringList { QStringLiteral("There are no shapes to export.") });
    EXPECT_FALSE(QFile::exists(set));
    messages.clear();
    const QByteArray shapes = R"([{"points":[[120,30],[20,30]],"type":2},)"
                              R"({"points":[[50,100],[150,100],[150,140],[70,130]],"type":5},)"
                              R"({"points":[[90,60],[110,60]],"type":6}])";
    ASSERT_EQ(ShapesFromJson(from->GetElemMgr(), shapes), 3);
    ASSERT_TRUE(from->ExportRois(set));

    auto* to = qobject_cast<CMeasureDoc*>(app->OpenPictureDocument(plain, QStringLiteral("To")));
    ASSERT_NE(to, nullptr);
    EXPECT_EQ(to->ImportRois(set), 3);
    EXPECT_EQ(ShapesToJson(to->GetElemMgr()), ShapesToJson(from->GetElemMgr()));
    ASSERT_TRUE(frame->RouteCommand(ID_EDIT_UNDO));
    EXPECT_EQ(ShapeTypes(*to), std::vector<int> { 9 }) << "one step for the whole set";
    EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();

    // An ellipse has no shape here: the rest comes in and the user is told.
    ImageJRoi ellipse;
    ellipse.type = ImageJRoi::Oval;
    ellipse.bounds = QRectF(10, 10, 40, 20);
    ImageJRoi line;
    line.type = ImageJRoi::Line;
    line.points = { { 5, 5 }, { 55, 5 } };
    const QString mixed = home.filePath("mixed.zip");
    QFile file(mixed);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(ImageJRois::EncodeSet({ ellipse, line }));
    file.close();
    EXPECT_EQ(to->ImportRois(mixed), 1);
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages.front().startsWith(QStringLiteral("1 of the 2 ROIs have no kind of shape here")))
        << messages.front().toStdString();
    messages.clear();

    // A file that is no ROI file changes nothing.
    EXPECT_EQ(to->ImportRois(home.filePath("RoiSet.zip.missing")), -1);
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages.front().startsWith(QStringLiteral("Cannot import")))
        << messages.front().toStdString();
    EXPECT_EQ(ShapeTypes(*to), (std::vector<int> { 9, 2 }));
}
