#include "measure/ShapesJson.h"

#include "measure/CGVLAnoText.h"
#include "measure/CGVLElemMgr.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <vector>

namespace {

constexpr int kTypeRuler = 9;
constexpr int kTypeScale = 10;
constexpr int kTypeText = 14;

// Shape type to the tool that draws it.
int ToolForType(int type)
{
    switch (type) {
    case 11:
        return CGVLShape::kToolCounting;
    case 12:
        return CGVLShape::kToolArrow;
    case kTypeText:
        return CGVLShape::kToolText;
    default:
        return type;
    }
}

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
    const int tool = ToolForType(type);
    const std::size_t n = points.size();
    switch (type) {
    case 1: // point
    case 11: // counting marker
        if (n != 1)
            return false;
        Click(mgr, points[0], tool);
        return true;
    case 2: // line
    case 12: // arrow
        // Point 0 is where the drag ended.
        if (n != 2)
            return false;
        Drag(mgr, points[1], points[0], tool);
        return true;
    case 4: // rectangle: the corners, the dragged diagonal from 0 to 3
        if (n != 4)
            return false;
        Drag(mgr, points[0], points[3], tool);
        return true;
    case 6: // circle: centre, then a point of the rim
        if (n != 2)
            return false;
        Drag(mgr, points[0], points[1], tool);
        return true;
    case 3: // angle
    case 7: // three-point circle
        if (n != 3)
            return false;
        for (const QPoint& p : points)
            Click(mgr, p, tool);
        return true;
    case 5: // polygon
        if (n < 3)
            return false;
        for (const QPoint& p : points)
            Click(mgr, p, tool);
        mgr.OnRButtonDown(0, points.back(), tool);
        return true;
    case kTypeText: {
        if (n != 1)
            return false;
        CGVLElemMgr::TextInput previous = [&text](QObject*, QStringList& lines) {
            lines = text;
            return true;
        };
        {
            const auto lock = mgr.Lock();
            std::swap(previous, mgr.m_fnTextInput);
        }
        Click(mgr, points[0], tool);
        const auto lock = mgr.Lock();
        mgr.m_fnTextInput = std::move(previous);
        return true;
    }
    default:
        return false;
    }
}

} // namespace

QByteArray ShapesToJson(CGVLElemMgr& mgr)
{
    QJsonArray shapes;
    const auto lock = mgr.Lock();
    for (std::size_t i = 1; i < mgr.m_arShape.size(); ++i) {
        const CGVLShape& shape = *mgr.m_arShape[i];
        const int type = shape.m_nType;
        if (type == kTypeRuler || type == kTypeScale)
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
