#include "measure/ShapesJson.h"

#include "measure/CGVLAnoText.h"
#include "measure/CGVLElemMgr.h"
#include "measure/ShapeKinds.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <vector>

namespace {

void Click(CGVLElemMgr& mgr, const QPoint& p, int tool)
{
    mgr.OnMouseMove(0, p, tool);
    mgr.OnLButtonDown(0, p, tool);
    mgr.OnLButtonUp(0, p, tool);
}

void Drag(CGVLElemMgr& mgr, const QPoint& from, const QPoint& to, int tool)
{
    mgr.OnLButtonDown(0, from, tool);
    // The first move gives a dragged shape its second point.
    mgr.OnMouseMove(0, from, tool);
    mgr.OnMouseMove(0, to, tool);
    mgr.OnLButtonUp(0, to, tool);
}

// Replays the input of one element; false when the type has no fitting input.
bool Replay(CGVLElemMgr& mgr, int type, const std::vector<QPoint>& points, const QStringList& text)
{
    const ShapeKind* kind = FindShapeKind(type);
    if (!kind)
        return false;
    using Gesture = ShapeStorage::Gesture;
    const ShapeStorage& storage = kind->storage;
    const int tool = int(kind->tool);
    const std::size_t n = points.size();
    if (storage.gesture == Gesture::ClicksThenRightPress ? n < storage.points : n != storage.points)
        return false;
    switch (storage.gesture) {
    case Gesture::NotKept:
        return false;
    case Gesture::Click:
        Click(mgr, points[0], tool);
        return true;
    case Gesture::Drag:
        Drag(mgr, points[storage.from], points[storage.to], tool);
        return true;
    case Gesture::Clicks:
        for (const QPoint& p : points)
            Click(mgr, p, tool);
        return true;
    case Gesture::ClicksThenRightPress:
        for (const QPoint& p : points)
            Click(mgr, p, tool);
        mgr.OnRButtonDown(0, points.back(), tool);
        return true;
    case Gesture::Text: {
        CGVLElemMgr::TextInput previous = mgr.SetTextInput([&text](QObject*, QStringList& lines) {
            lines = text;
            return true;
        });
        Click(mgr, points[0], tool);
        mgr.SetTextInput(std::move(previous));
        return true;
    }
    }
    return false;
}

} // namespace

QByteArray ShapesToJson(CGVLElemMgr& mgr)
{
    QJsonArray shapes;
    const auto lock = mgr.Lock();
    for (std::size_t i = 1; i < mgr.m_arShape.size(); ++i) {
        const CGVLShape& shape = *mgr.m_arShape[i];
        const int type = shape.m_nType;
        const ShapeKind* kind = FindShapeKind(type);
        if (kind && kind->storage.gesture == ShapeStorage::Gesture::NotKept)
            continue;
        QJsonArray points;
        for (const QPoint& p : shape.m_arCoord)
            points.append(QJsonArray { p.x(), p.y() });
        QJsonObject entry { { "type", type }, { "points", points } };
        if (const auto* text = dynamic_cast<const CGVLAnoText*>(&shape))
            entry.insert("text", QJsonArray::fromStringList(text->m_arText));
        shapes.append(entry);
    }
    return QJsonDocument(shapes).toJson(QJsonDocument::Compact);
}

int ShapesFromJson(CGVLElemMgr& mgr, const QByteArray& json)
{
    const auto count = [&mgr] {
        const auto lock = mgr.Lock();
        return mgr.m_arShape.size();
    };
    const QJsonDocument doc = QJsonDocument::fromJson(json);
    if (!doc.isArray())
        return 0;
    int made = 0;
    for (const QJsonValue& value : doc.array()) {
        const QJsonObject entry = value.toObject();
        std::vector<QPoint> points;
        bool valid = true;
        for (const QJsonValue& p : entry.value("points").toArray()) {
            const QJsonArray xy = p.toArray();
            valid = valid && xy.size() == 2 && xy[0].isDouble() && xy[1].isDouble();
            if (valid)
                points.emplace_back(xy[0].toInt(), xy[1].toInt());
        }
        QStringList text;
        for (const QJsonValue& line : entry.value("text").toArray())
            text.append(line.toString());
        const std::size_t before = count();
        if (valid && Replay(mgr, entry.value("type").toInt(), points, text) && count() > before)
            ++made;
    }
    return made;
}
