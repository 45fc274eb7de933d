#include "measure/ShapesJson.h"

#include "measure/CGVLElemMgr.h"
#include "measure/CGVLPolygon.h"

#include <QBuffer>

#include <gtest/gtest.h>

namespace {

// One element of every kind that a picture keeps, as ShapesToJson writes it.
// Points as the elements keep them: a line or arrow ends first, a rectangle
// has its four corners.
const QByteArray kEveryKind = R"([{"points":[[10,10]],"type":1},)"
                              R"({"points":[[220,30],[20,30]],"type":2},)"
                              R"({"points":[[50,50],[150,50],[50,150]],"type":3},)"
                              R"({"points":[[300,300],[400,300],[300,380],[400,380]],"type":4},)"
                              R"({"points":[[500,100],[600,100],[600,200],[520,180]],"type":5},)"
                              R"({"points":[[200,400],[240,400]],"type":6},)"
                              R"({"points":[[700,100],[800,200],[700,300]],"type":7},)"
                              R"({"points":[[30,500]],"type":11},)"
                              R"({"points":[[160,560],[60,500]],"type":12},)"
                              R"({"points":[[400,600]],"text":["first line","second"],"type":14}])";

QByteArray Csv(CGVLElemMgr& mgr)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    mgr.WriteCsv(buffer);
    return buffer.data();
}

} // namespace

// Replaying the input puts back every kind exactly where it was, with its
// texts, complete and measured: the JSON and the CSV come out the same.
TEST(ShapesJson, EveryKindComesBackAsItWas)
{
    CGVLElemMgr mgr;
    mgr.CreateShape(ShapeType::Ruler);
    ASSERT_EQ(ShapesFromJson(mgr, kEveryKind), 10);
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
