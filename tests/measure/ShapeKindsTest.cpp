#include "measure/ShapeKinds.h"

#include "measure/CGVLElemMgr.h"
#include "measure/ShapesJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <typeinfo>

namespace {

// The type ids that pictures and users' files carry; a kind keeps its id.
constexpr int kFileTypeIds[] = { 1, 2, 3, 4, 5, 6, 7, 9, 10, 11, 12, 14 };

// `n` points on a circle of radius 80 around the centre: never collinear,
// never degenerate, each kind somewhere else.
QJsonArray PointsAround(QPoint centre, std::size_t n)
{
    QJsonArray points;
    for (std::size_t i = 0; i < n; ++i) {
        const double a = 0.35 + 2 * M_PI * double(i) / double(n);
        points.append(
            QJsonArray { centre.x() + qRound(80 * std::cos(a)), centre.y() + qRound(80 * std::sin(a)) });
    }
    return points;
}

} // namespace

// Each id has one row, whose class makes elements of that id and copies them
// for undo as themselves.
TEST(ShapeKinds, EveryTypeIdHasOneRowWhoseClassMakesAndCopiesIt)
{
    const auto kinds = ShapeKinds();
    for (const ShapeKind& kind : kinds) {
        EXPECT_EQ(std::ranges::count(kinds, kind.type, &ShapeKind::type), 1) << int(kind.type);
    }
    CGVLElemMgr mgr;
    for (int type : kFileTypeIds) {
        const ShapeKind* kind = FindShapeKind(type);
        ASSERT_NE(kind, nullptr) << type;
        EXPECT_EQ(int(kind->type), type);
        const CGVLShape* shape = mgr.CreateShape(type);
        ASSERT_NE(shape, nullptr) << type;
        EXPECT_EQ(shape->GetType(), type) << "the class takes another id";
    }

    const auto copies = mgr.CopyShapes();
    CGVLElemMgr other;
    other.ReplaceShapes(copies);
    ASSERT_EQ(copies.size(), mgr.m_arShape.size()) << "an element was not copied";
    ASSERT_EQ(other.m_arShape.size(), mgr.m_arShape.size());
    for (std::size_t i = 0; i < copies.size(); ++i) {
        const CGVLShape& original = *mgr.m_arShape[i];
        EXPECT_TRUE(typeid(*copies[i]) == typeid(original)) << original.GetType();
        EXPECT_TRUE(typeid(*other.m_arShape[i]) == typeid(original)) << original.GetType();
    }
}

// A drawing tool reaches its own kind and no other; the tools that act on
// elements already there reach none.
TEST(ShapeKinds, ToolsReachTheirKindAndTheOtherToolsNone)
{
    for (const ShapeKind& kind : ShapeKinds()) {
        if (kind.tool == ToolCode::None)
            continue;
        EXPECT_EQ(ShapeKindForTool(int(kind.tool)), &kind) << int(kind.type);
        EXPECT_EQ(CGVLElemMgr::TypeForTool(int(kind.tool)), int(kind.type));
    }
    for (ToolCode tool : { ToolCode::None, ToolCode::PressLast, ToolCode::Move, ToolCode::DeleteOne,
             ToolCode::DeleteAll, ToolCode::Ignore }) {
        EXPECT_EQ(ShapeKindForTool(int(tool)), nullptr) << int(tool);
        EXPECT_EQ(CGVLElemMgr::TypeForTool(int(tool)), 0) << int(tool);
    }
}

// Every kind a picture keeps comes back from its JSON through its row as one
// finished element that writes the same JSON again.
TEST(ShapeKinds, EveryKeptKindComesBackAsItself)
{
    QJsonArray entries;
    std::vector<int> kept;
    for (const ShapeKind& kind : ShapeKinds()) {
        if (!kind.storage.kept)
            continue;
        const int i = int(kept.size());
        const QPoint centre(150 + 250 * (i % 4), 150 + 250 * (i / 4));
        entries.append(
            QJsonObject { { "type", int(kind.type) }, { "points", PointsAround(centre, kind.storage.points) },
                { "text", QJsonArray { "kept text" } } });
        kept.push_back(int(kind.type));
    }
    ASSERT_FALSE(kept.empty());

    CGVLElemMgr mgr;
    mgr.CreateShape(ShapeType::Ruler);
    EXPECT_EQ(ShapesFromJson(mgr, QJsonDocument(entries).toJson()), int(kept.size()));
    std::vector<int> made;
    for (std::size_t i = 1; i < mgr.m_arShape.size(); ++i) {
        made.push_back(mgr.m_arShape[i]->GetType());
        EXPECT_FALSE(mgr.m_arShape[i]->m_bDown) << "still being placed: " << made.back();
    }
    EXPECT_EQ(made, kept);

    const QByteArray json = ShapesToJson(mgr);
    CGVLElemMgr other;
    other.CreateShape(ShapeType::Ruler);
    EXPECT_EQ(ShapesFromJson(other, json), int(kept.size()));
    EXPECT_EQ(ShapesToJson(other).toStdString(), json.toStdString());
}
