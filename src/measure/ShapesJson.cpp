#include "measure/ShapesJson.h"

#include "measure/CGVLAnoText.h"
#include "measure/CGVLElemMgr.h"
#include "measure/ShapeKinds.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <cmath>
#include <memory>
#include <vector>

namespace {

// One element as stored, before it is checked.
struct Entry
{
    int type = 0;
    std::vector<QPoint> points;
    QStringList text;
    bool malformed = false;
    bool outOfReach = false;
};

// A coordinate within reach, rounded as the older writers' integers were.
bool TakeCoordinate(const QJsonValue& value, int& to, Entry& entry)
{
    if (!value.isDouble()) {
        entry.malformed = true;
        return false;
    }
    const double v = value.toDouble();
    if (!std::isfinite(v) || std::abs(v) > StoredShapeLimits::kCoordinate) {
        entry.outOfReach = true;
        return false;
    }
    to = int(std::lround(v));
    return true;
}

void TakePoint(const QJsonValue& x, const QJsonValue& y, Entry& entry)
{
    QPoint p;
    if (TakeCoordinate(x, p.rx(), entry) && TakeCoordinate(y, p.ry(), entry))
        entry.points.push_back(p);
}

// [type, x0, y0, x1, y1, ..., "line", ...]
Entry FromArray(const QJsonArray& array)
{
    Entry entry;
    if (array.isEmpty() || !array[0].isDouble()) {
        entry.malformed = true;
        return entry;
    }
    entry.type = array[0].toInt(-1);
    qsizetype i = 1;
    while (i < array.size() && !array[i].isString()) {
        if (i + 1 >= array.size()) {
            entry.malformed = true;
            return entry;
        }
        TakePoint(array[i], array[i + 1], entry);
        i += 2;
    }
    for (; i < array.size(); ++i) {
        if (!array[i].isString())
            entry.malformed = true;
        entry.text.append(array[i].toString());
    }
    return entry;
}

// {"type": id, "points": [[x, y], ...], "text": [lines]}
Entry FromObject(const QJsonObject& object)
{
    Entry entry;
    entry.type = object.value("type").toInt(-1);
    for (const QJsonValue& p : object.value("points").toArray()) {
        const QJsonArray xy = p.toArray();
        if (xy.size() != 2)
            entry.malformed = true;
        else
            TakePoint(xy[0], xy[1], entry);
    }
    for (const QJsonValue& line : object.value("text").toArray())
        entry.text.append(line.toString());
    return entry;
}

bool FitsKind(const ShapeStorage& storage, std::size_t points)
{
    // Too few points for a kind that takes more makes it degenerate, not damaged.
    return storage.kept && (storage.orMore || points == storage.points);
}

} // namespace

QString ShapesRead::Note() const
{
    if (tooLarge)
        return QStringLiteral("the stored shapes take more than %1 MB, more than the program reads")
            .arg(StoredShapeLimits::kText / (1024 * 1024));
    QStringList why;
    if (overLimit)
        why << QStringLiteral("%1 past the program's limits (%2 shapes, %3 points in all)")
                   .arg(overLimit)
                   .arg(StoredShapeLimits::kShapes)
                   .arg(StoredShapeLimits::kPoints);
    if (outOfReach)
        why << QStringLiteral("%1 with coordinates beyond %2 pixels")
                   .arg(outOfReach)
                   .arg(StoredShapeLimits::kCoordinate);
    if (damaged)
        why << QStringLiteral("%1 damaged or of a kind this program does not know").arg(damaged);
    if (why.isEmpty())
        return {};
    return QStringLiteral("%1 stored shapes were left out: %2")
        .arg(overLimit + outOfReach + damaged)
        .arg(why.join(QStringLiteral("; ")));
}

QByteArray ShapesToJson(CGVLElemMgr& mgr)
{
    QByteArray out("[");
    const auto lock = mgr.Lock();
    for (std::size_t i = 1; i < mgr.m_arShape.size(); ++i) {
        const CGVLShape& shape = *mgr.m_arShape[i];
        const int type = shape.m_nType;
        const ShapeKind* kind = FindShapeKind(type);
        if (kind && !kind->storage.kept)
            continue;
        if (out.size() > 1)
            out += ',';
        if (const auto* text = dynamic_cast<const CGVLAnoText*>(&shape)) {
            // Strings want JSON's escaping.
            QJsonArray entry { type };
            for (const QPoint& p : shape.m_arCoord)
                entry << p.x() << p.y();
            for (const QString& line : text->m_arText)
                entry << line;
            out += QJsonDocument(entry).toJson(QJsonDocument::Compact);
            continue;
        }
        out += '[';
        out += QByteArray::number(type);
        for (const QPoint& p : shape.m_arCoord) {
            out += ',';
            out += QByteArray::number(p.x());
            out += ',';
            out += QByteArray::number(p.y());
        }
        out += ']';
    }
    out += ']';
    return out;
}

ShapesRead ReadShapesJson(CGVLElemMgr& mgr, const QByteArray& json)
{
    ShapesRead read;
    if (json.size() > StoredShapeLimits::kText) {
        read.tooLarge = true;
        return read;
    }
    const QJsonDocument doc = QJsonDocument::fromJson(json);
    if (!doc.isArray()) {
        read.damaged = json.trimmed().isEmpty() ? 0 : 1;
        return read;
    }
    std::vector<std::unique_ptr<CGVLShape>> shapes;
    qsizetype points = 0;
    for (const QJsonValue& value : doc.array()) {
        Entry entry;
        if (value.isArray())
            entry = FromArray(value.toArray());
        else if (value.isObject())
            entry = FromObject(value.toObject());
        else
            entry.malformed = true;
        const ShapeKind* kind = FindShapeKind(entry.type);
        if (entry.outOfReach) {
            ++read.outOfReach;
            continue;
        }
        if (entry.malformed || !kind || !FitsKind(kind->storage, entry.points.size())) {
            ++read.damaged;
            continue;
        }
        if (int(shapes.size()) >= StoredShapeLimits::kShapes
            || points + qsizetype(entry.points.size()) > StoredShapeLimits::kPoints) {
            ++read.overLimit;
            continue;
        }
        std::unique_ptr<CGVLShape> shape = kind->factory.make(mgr);
        if (auto* text = dynamic_cast<CGVLAnoText*>(shape.get()))
            text->m_arText = entry.text;
        const qsizetype count = qsizetype(entry.points.size());
        if (!shape->TakeStoredPoints(std::move(entry.points)))
            continue;
        points += count;
        shapes.push_back(std::move(shape));
    }
    read.made = int(shapes.size());
    mgr.AppendShapes(std::move(shapes));
    return read;
}

int ShapesFromJson(CGVLElemMgr& mgr, const QByteArray& json)
{
    return ReadShapesJson(mgr, json).made;
}
