#include "measure/ShapesJson.h"

#include "measure/CGVLElemMgr.h"
#include "measure/CGVLNo.h"
#include "measure/CGVLPolygon.h"

#include <QBuffer>

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

// One element of every kind that a picture keeps, in the older form that
// pictures saved before hold. Points as the elements keep them: a line or
// arrow ends first, a rectangle has its four corners.
const QByteArray kEveryKindOld = R"([{"points":[[10,10]],"type":1},)"
                                 R"({"points":[[220,30],[20,30]],"type":2},)"
                                 R"({"points":[[50,50],[150,50],[50,150]],"type":3},)"
                                 R"({"points":[[300,300],[400,300],[300,380],[400,380]],"type":4},)"
                                 R"({"points":[[500,100],[600,100],[600,200],[520,180]],"type":5},)"
                                 R"({"points":[[200,400],[240,400]],"type":6},)"
                                 R"({"points":[[700,100],[800,200],[700,300]],"type":7},)"
                                 R"({"points":[[30,500]],"type":11},)"
                                 R"({"points":[[160,560],[60,500]],"type":12},)"
                                 R"({"points":[[400,600]],"text":["first line","second"],"type":14}])";

// The same as ShapesToJson writes it now.
const QByteArray kEveryKind = R"([[1,10,10],[2,220,30,20,30],[3,50,50,150,50,50,150],)"
                              R"([4,300,300,400,300,300,380,400,380],[5,500,100,600,100,600,200,520,180],)"
                              R"([6,200,400,240,400],[7,700,100,800,200,700,300],[11,30,500],)"
                              R"([12,160,560,60,500],[14,400,600,"first line","second"]])";

QByteArray Csv(CGVLElemMgr& mgr)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    mgr.WriteCsv(buffer);
    return buffer.data();
}

} // namespace

// Every kind comes back exactly where it was, with its texts, complete and
// measured, from either form: the JSON and the CSV come out the same.
TEST(ShapesJson, EveryKindComesBackAsItWas)
{
    CGVLElemMgr mgr;
    mgr.CreateShape(ShapeType::Ruler);
    ASSERT_EQ(ShapesFromJson(mgr, kEveryKindOld), 10);
    EXPECT_EQ(ShapesToJson(mgr).toStdString(), kEveryKind.toStdString());
    const QByteArray csv = Csv(mgr);
    EXPECT_TRUE(csv.contains("1,Line distance,40.00, um")) << csv.toStdString();

    // Into a second manager (another document) with the same CSV.
    CGVLElemMgr other;
    other.CreateShape(ShapeType::Ruler);
    ShapesFromJson(other, ShapesToJson(mgr));
    EXPECT_EQ(Csv(other).toStdString(), Csv(mgr).toStdString());

    // Restored elements are finished: the polygon is closed and the next
    // angle click starts a new angle instead of growing the restored one.
    {
        const auto lock = mgr.Lock();
        auto* polygon = dynamic_cast<CGVLPolygon*>(mgr.m_arShape[5].get());
        ASSERT_NE(polygon, nullptr);
        EXPECT_TRUE(polygon->IsClosed());
        for (const auto& shape : mgr.m_arShape)
            EXPECT_FALSE(shape->m_bDown) << shape->GetType();
    }
    mgr.OnLButtonDown(0, QPoint(900, 900), 3);
    mgr.OnLButtonUp(0, QPoint(900, 900), 3);
    EXPECT_EQ(mgr.m_arShape.size(), 12u);
}

// The ruler and scale stay out; damaged entries are skipped, the good ones
// kept; text that is not JSON makes nothing.
TEST(ShapesJson, RulerStaysOutAndDamagedEntriesAreSkipped)
{
    CGVLElemMgr mgr;
    mgr.CreateShape(ShapeType::Ruler);
    mgr.CreateShape(ShapeType::Scale);
    EXPECT_EQ(ShapesToJson(mgr), "[]");

    const QByteArray damaged = R"([{"type":2,"points":[[1,1]]},{"type":99,"points":[[1,1],[5,5]]},)"
                               R"({"type":2,"points":[[1,1],["x",5]]},{"type":5,"points":[[1,1],[9,9]]},)"
                               R"({"type":6,"points":[[100,100],[130,100]]},"junk"])";
    EXPECT_EQ(ShapesFromJson(mgr, damaged), 1);
    EXPECT_EQ(mgr.m_arShape.back()->GetType(), 6);
    EXPECT_EQ(ShapesFromJson(mgr, "not json"), 0);
    EXPECT_EQ(ShapesFromJson(mgr, R"({"type":2})"), 0);
    EXPECT_EQ(mgr.m_arShape.size(), 3u);
}

// Stored shapes that drawing would have dropped are dropped, silently: a
// short line or arrow, a small rectangle or circle, a polygon of two points,
// a circle through three points on one line. Their neighbours just large
// enough stay, and markers are numbered on from the document's count.
TEST(ShapesJson, DegenerateShapesAreDroppedAsWhenDrawn)
{
    CGVLElemMgr mgr;
    mgr.CreateShape(ShapeType::Ruler);
    mgr.SetCount(4);
    const QByteArray stored = R"([[2,10,10,14,14],[2,10,10,15,14],[12,10,10,19,19],[12,10,10,20,19],)"
                              R"([4,0,0,9,0,0,9,9,9],[4,0,0,9,0,0,10,9,10],[6,50,50,55,50],[6,50,50,56,50],)"
                              R"([5,1,1,50,50],[7,0,0,10,10,20,20],[7,0,0,10,10,20,0],[11,5,5],[11,6,6]])";
    const ShapesRead read = ReadShapesJson(mgr, stored);
    EXPECT_EQ(read.made, 7);
    EXPECT_TRUE(read.Note().isEmpty()) << read.Note().toStdString();
    std::vector<int> types;
    for (std::size_t i = 1; i < mgr.m_arShape.size(); ++i)
        types.push_back(mgr.m_arShape[i]->GetType());
    EXPECT_EQ(types, (std::vector<int> { 2, 12, 4, 6, 7, 11, 11 }));
    EXPECT_EQ(dynamic_cast<CGVLNo&>(*mgr.m_arShape[6]).GetNumber(), 5);
    EXPECT_EQ(dynamic_cast<CGVLNo&>(*mgr.m_arShape[7]).GetNumber(), 6);
    EXPECT_EQ(mgr.GetCount(), 6);
}

// A stranger's picture: entries of the wrong types, coordinates beyond reach,
// nesting deeper than JSON readers take, and more shapes or points than the
// program shows. What can be shown is, and the note says what was left out.
TEST(ShapesJson, HostileEntriesAreLeftOutWithAReason)
{
    CGVLElemMgr mgr;
    mgr.CreateShape(ShapeType::Ruler);
    const QByteArray hostile = R"([[2,10,10,200,200],[2,2147483647,0,0,0],[2,1e300,0,0,0],[2,-100001,0,0,0],)"
                               R"([2,"10",10,200,200],[2,10,10,200],[true],[99,1,1],[14,1,1,2],{"type":[2]},)"
                               R"([11,100000,-100000]])";
    ShapesRead read = ReadShapesJson(mgr, hostile);
    EXPECT_EQ(read.made, 2);
    EXPECT_EQ(read.outOfReach, 3);
    EXPECT_EQ(read.damaged, 6);
    EXPECT_TRUE(read.Note().contains("9 stored shapes were left out")) << read.Note().toStdString();
    EXPECT_TRUE(read.Note().contains("beyond 100000 pixels")) << read.Note().toStdString();

    const QByteArray deep = QByteArray(5000, '[') + QByteArray(5000, ']');
    read = ReadShapesJson(mgr, deep);
    EXPECT_EQ(read.made, 0);
    EXPECT_FALSE(read.Note().isEmpty());
    EXPECT_TRUE(ReadShapesJson(mgr, QByteArray(StoredShapeLimits::kText + 1, ' ')).tooLarge);

    // One marker more than the limit, then a polygon that would pass the points limit.
    QByteArray many = "[";
    for (int i = 0; i <= StoredShapeLimits::kShapes; ++i)
        many += "[11," + QByteArray::number(i % 1000) + ",5],";
    many += "[5";
    for (qsizetype i = 0; i < StoredShapeLimits::kPoints; ++i)
        many += "," + QByteArray::number(i % 1000) + "," + QByteArray::number(i % 7);
    many += "]]";
    CGVLElemMgr full;
    full.CreateShape(ShapeType::Ruler);
    read = ReadShapesJson(full, many);
    EXPECT_EQ(read.made, StoredShapeLimits::kShapes);
    EXPECT_EQ(read.overLimit, 2);
    EXPECT_TRUE(read.Note().contains("50000 shapes")) << read.Note().toStdString();
    EXPECT_EQ(mgr.m_arShape.size(), 3u);
}

// Large sets come back whole: 20,000 markers numbered in order, and a polygon
// of 20,000 points, closed.
TEST(ShapesJson, LargeSetsComeBackWhole)
{
    QByteArray markers = "[";
    for (int i = 0; i < 20000; ++i)
        markers += "[11," + QByteArray::number(10 + i % 2000) + "," + QByteArray::number(10 + i / 2000 * 20)
            + "],";
    markers.back() = ']';
    QByteArray polygon = "[[5";
    for (int i = 0; i < 20000; ++i) {
        const double a = 2 * M_PI * i / 20000;
        polygon += "," + QByteArray::number(qRound(3000 + 2000 * std::cos(a))) + ","
            + QByteArray::number(qRound(3000 + 2000 * std::sin(a)));
    }
    polygon += "]]";
    CGVLElemMgr source;
    source.CreateShape(ShapeType::Ruler);
    ASSERT_EQ(ShapesFromJson(source, markers), 20000);
    ASSERT_EQ(ShapesFromJson(source, polygon), 1);
    const QByteArray json = ShapesToJson(source);

    CGVLElemMgr copy;
    copy.CreateShape(ShapeType::Ruler);
    ASSERT_EQ(ShapesFromJson(copy, json), 20001);
    EXPECT_EQ(ShapesToJson(copy), json);
    EXPECT_EQ(Csv(copy), Csv(source));
    const auto lock = copy.Lock();
    EXPECT_EQ(dynamic_cast<CGVLNo&>(*copy.m_arShape[20000]).GetNumber(), 20000);
    const auto& closed = dynamic_cast<CGVLPolygon&>(*copy.m_arShape.back());
    EXPECT_TRUE(closed.IsClosed());
    EXPECT_EQ(closed.CoordCount(), 20000);
}
