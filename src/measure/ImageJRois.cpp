#include "measure/ImageJRois.h"

#include "measure/CGVLAnoText.h"
#include "measure/CGVLCircle.h"
#include "measure/CGVLCircleT.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CGVLPolygon.h"
#include "measure/ShapeKinds.h"
#include "measure/ShapesJson.h"
#include "platform/ZipArchive.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

// Header fields (RoiDecoder's offsets).
constexpr int kRoiHeaderSize = 64;
constexpr int kHeader2Size = 64;
// 1.52t's layout: the second header with the name, sub-pixel rectangles.
constexpr int kVersion = 228;
constexpr int kVersionAt = 4;
constexpr int kTypeAt = 6;
constexpr int kTop = 8;
constexpr int kLeft = 10;
constexpr int kBottom = 12;
constexpr int kRight = 14;
constexpr int kCount = 16;
constexpr int kX1 = 18; // also the sub-pixel rectangle's x, y, width, height
constexpr int kY1 = 22;
constexpr int kX2 = 26;
constexpr int kY2 = 30;
constexpr int kShapeSize = 36;
constexpr int kSubtypeAt = 48;
constexpr int kOptions = 50;
constexpr int kArrowHead = 53;
constexpr int kHeader2At = 60;
// Second header, from its start.
constexpr int kNameOffset = 16;
constexpr int kNameLength = 20;
constexpr int kSubPixel = 128;
constexpr int kArrowHeadSize = 10;

void Put16(QByteArray& b, int at, int v)
{
    b[at] = char((v >> 8) & 0xff);
    b[at + 1] = char(v & 0xff);
}

void Put32(QByteArray& b, int at, std::uint32_t v)
{
    Put16(b, at, int(v >> 16));
    Put16(b, at + 2, int(v & 0xffff));
}

void PutFloat(QByteArray& b, int at, double v)
{
    const float f = float(v);
    std::uint32_t bits = 0;
    std::memcpy(&bits, &f, sizeof bits);
    Put32(b, at, bits);
}

void PutChars(QByteArray& b, int at, const QString& text)
{
    for (qsizetype i = 0; i < text.size(); ++i)
        Put16(b, at + int(i) * 2, text[i].unicode());
}

bool Whole(double v)
{
    return v == std::floor(v);
}

// Big-endian reads that report running off the end instead of doing it.
struct Reader
{
    const QByteArray& bytes;
    bool ok = true;
    std::uint32_t Get(qint64 at, int size)
    {
        if (at < 0 || at + size > bytes.size()) {
            ok = false;
            return 0;
        }
        std::uint32_t v = 0;
        for (int i = 0; i < size; ++i)
            v = (v << 8) | std::uint8_t(bytes[qsizetype(at + i)]);
        return v;
    }
    int Byte(qint64 at) { return int(Get(at, 1)); }
    // Signed, except that ImageJ takes values below -5000 as large unsigned ones.
    int Short(qint64 at)
    {
        const std::uint32_t u = Get(at, 2);
        const int s = int(std::int16_t(u));
        return s < -5000 ? int(u) : s;
    }
    int Int(qint64 at) { return int(Get(at, 4)); }
    double Float(qint64 at)
    {
        const std::uint32_t bits = Get(at, 4);
        float f = 0;
        std::memcpy(&f, &bits, sizeof f);
        return double(f);
    }
    QString Chars(qint64 at, qint64 count)
    {
        if (count < 0 || at + count * 2 > bytes.size()) {
            ok = false;
            return {};
        }
        QString text;
        for (qint64 i = 0; i < count; ++i)
            text.append(QChar(char16_t(Get(at + i * 2, 2))));
        return text;
    }
};

QRectF PointBounds(const std::vector<QPointF>& points)
{
    double l = points[0].x(), r = l, t = points[0].y(), b = t;
    for (const QPointF& p : points) {
        l = std::min(l, p.x());
        r = std::max(r, p.x());
        t = std::min(t, p.y());
        b = std::max(b, p.y());
    }
    return QRectF(QPointF(l, t), QPointF(r, b));
}

const char* KindWord(int type)
{
    switch (ShapeType(type)) {
    case ShapeType::Point:
        return "point";
    case ShapeType::Line:
        return "line";
    case ShapeType::Angle:
        return "angle";
    case ShapeType::Rect:
        return "rectangle";
    case ShapeType::Polygon:
        return "polygon";
    case ShapeType::Circle:
    case ShapeType::TriCircle:
        return "circle";
    case ShapeType::Counting:
        return "count";
    case ShapeType::Arrow:
        return "arrow";
    case ShapeType::Text:
        return "text";
    case ShapeType::Ruler:
    case ShapeType::Scale:
        break;
    }
    return nullptr;
}

QJsonArray Xy(const QPointF& p)
{
    return QJsonArray { int(std::lround(p.x())), int(std::lround(p.y())) };
}

} // namespace

QByteArray ImageJRois::Encode(const ImageJRoi& roi)
{
    const bool boxed = roi.type == ImageJRoi::Rect || roi.type == ImageJRoi::Oval;
    const bool listed = !boxed && roi.type != ImageJRoi::Line && !roi.points.empty();
    const QRectF box = boxed || roi.points.empty() ? roi.bounds : PointBounds(roi.points);
    const int left = int(std::floor(box.left()));
    const int top = int(std::floor(box.top()));
    const int right = int(std::ceil(box.right()));
    const int bottom = int(std::ceil(box.bottom()));
    const int n = listed ? int(roi.points.size()) : 0;
    bool subPixel
        = boxed && !(Whole(box.left()) && Whole(box.top()) && Whole(box.right()) && Whole(box.bottom()));
    for (int i = 0; i < n; ++i)
        subPixel
            = subPixel || !Whole(roi.points[std::size_t(i)].x()) || !Whole(roi.points[std::size_t(i)].y());
    const bool text = roi.subtype == ImageJRoi::Text;

    int body = n * 4 + (subPixel && listed ? n * 8 : 0);
    if (text)
        body = 16 + int(roi.fontName.size() + roi.text.size()) * 2 + 4;
    const int header2 = kRoiHeaderSize + body;
    QByteArray b(header2 + kHeader2Size + int(roi.name.size()) * 2, '\0');
    std::memcpy(b.data(), "Iout", 4);
    Put16(b, kVersionAt, kVersion);
    b[kTypeAt] = char(text ? ImageJRoi::Rect : roi.type);
    Put16(b, kTop, top);
    Put16(b, kLeft, left);
    Put16(b, kBottom, bottom);
    Put16(b, kRight, right);
    Put16(b, kCount, n);
    Put16(b, kSubtypeAt, roi.subtype);
    int options = subPixel ? kSubPixel : 0;
    if (roi.type == ImageJRoi::Line && roi.points.size() == 2) {
        PutFloat(b, kX1, roi.points[0].x());
        PutFloat(b, kY1, roi.points[0].y());
        PutFloat(b, kX2, roi.points[1].x());
        PutFloat(b, kY2, roi.points[1].y());
        if (roi.subtype == ImageJRoi::Arrow)
            b[kArrowHead] = char(kArrowHeadSize);
    } else if (subPixel && boxed) {
        PutFloat(b, kX1, box.left());
        PutFloat(b, kY1, box.top());
        PutFloat(b, kX2, box.width());
        PutFloat(b, kY2, box.height());
    }
    Put16(b, kOptions, options);
    for (int i = 0; i < n; ++i) {
        const QPointF& p = roi.points[std::size_t(i)];
        Put16(b, kRoiHeaderSize + i * 2, int(std::floor(p.x())) - left);
        Put16(b, kRoiHeaderSize + n * 2 + i * 2, int(std::floor(p.y())) - top);
        if (subPixel) {
            PutFloat(b, kRoiHeaderSize + n * 4 + i * 4, p.x());
            PutFloat(b, kRoiHeaderSize + n * 8 + i * 4, p.y());
        }
    }
    if (text) {
        Put32(b, kRoiHeaderSize, std::uint32_t(roi.fontSize));
        Put32(b, kRoiHeaderSize + 4, 0); // plain, left-justified
        Put32(b, kRoiHeaderSize + 8, std::uint32_t(roi.fontName.size()));
        Put32(b, kRoiHeaderSize + 12, std::uint32_t(roi.text.size()));
        PutChars(b, kRoiHeaderSize + 16, roi.fontName);
        PutChars(b, kRoiHeaderSize + 16 + int(roi.fontName.size()) * 2, roi.text);
        // The angle (float 0) ends the block.
    }
    Put32(b, kHeader2At, std::uint32_t(header2));
    if (!roi.name.isEmpty()) {
        Put32(b, header2 + kNameOffset, std::uint32_t(header2 + kHeader2Size));
        Put32(b, header2 + kNameLength, std::uint32_t(roi.name.size()));
        PutChars(b, header2 + kHeader2Size, roi.name);
    }
    return b;
}

std::optional<ImageJRoi> ImageJRois::Decode(const QByteArray& bytes, const QString& name, QString* error)
{
    const auto fail = [error](const QString& why) {
        if (error)
            *error = why;
        return std::nullopt;
    };
    if (bytes.size() < kRoiHeaderSize || !bytes.startsWith("Iout"))
        return fail(QStringLiteral("not an ImageJ ROI"));
    Reader in { bytes };
    const int version = in.Short(kVersionAt);
    ImageJRoi roi;
    roi.type = in.Byte(kTypeAt);
    roi.subtype = in.Short(kSubtypeAt);
    const int top = in.Short(kTop);
    const int left = in.Short(kLeft);
    const int bottom = in.Short(kBottom);
    const int right = in.Short(kRight);
    const int options = in.Short(kOptions);
    const bool subPixel = (options & kSubPixel) && version >= 222;
    const int header2 = in.Int(kHeader2At);
    roi.name = name;
    if (header2 > 0 && header2 + kHeader2Size <= bytes.size()) {
        const int at = in.Int(header2 + kNameOffset);
        const int length = in.Int(header2 + kNameLength);
        if (at > 0 && length > 0) {
            const QString stored = in.Chars(at, length);
            if (!in.ok)
                return fail(QStringLiteral("the ROI's name runs past its end"));
            roi.name = stored;
        }
    }
    roi.bounds = QRectF(left, top, right - left, bottom - top);
    if (in.Int(kShapeSize) > 0) {
        roi.composite = true;
        return roi;
    }
    switch (roi.type) {
    case ImageJRoi::Rect:
    case ImageJRoi::Oval:
        if (subPixel && version >= 223)
            roi.bounds = QRectF(in.Float(kX1), in.Float(kY1), in.Float(kX2), in.Float(kY2));
        if (roi.subtype == ImageJRoi::Text && version >= 218) {
            const int size = in.Int(kRoiHeaderSize);
            const int fontLength = in.Int(kRoiHeaderSize + 8);
            const int textLength = in.Int(kRoiHeaderSize + 12);
            roi.fontSize = size;
            roi.fontName = in.Chars(kRoiHeaderSize + 16, fontLength);
            roi.text = in.Chars(kRoiHeaderSize + 16 + qint64(fontLength) * 2, textLength);
        }
        break;
    case ImageJRoi::Line:
        roi.points = { { in.Float(kX1), in.Float(kY1) }, { in.Float(kX2), in.Float(kY2) } };
        break;
    case ImageJRoi::Polygon:
    case ImageJRoi::FreeLine:
    case ImageJRoi::PolyLine:
    case ImageJRoi::Freehand:
    case ImageJRoi::Traced:
    case ImageJRoi::Angle:
    case ImageJRoi::Point: {
        qint64 n = in.Get(kCount, 2);
        if (n == 0)
            n = in.Int(kX1); // many points keep their count here
        if (n < 0 || kRoiHeaderSize + n * (subPixel ? 12 : 4) > bytes.size())
            return fail(QStringLiteral("the ROI's coordinates run past its end"));
        for (qint64 i = 0; i < n; ++i) {
            if (subPixel)
                roi.points.emplace_back(
                    in.Float(kRoiHeaderSize + n * 4 + i * 4), in.Float(kRoiHeaderSize + n * 8 + i * 4));
            else
                roi.points.emplace_back(left + std::max(0, in.Short(kRoiHeaderSize + i * 2)),
                    top + std::max(0, in.Short(kRoiHeaderSize + n * 2 + i * 2)));
        }
        break;
    }
    default:
        return fail(QStringLiteral("unknown ROI type %1").arg(roi.type));
    }
    if (!in.ok)
        return fail(QStringLiteral("the ROI is cut short"));
    return roi;
}

QByteArray ImageJRois::EncodeSet(const std::vector<ImageJRoi>& rois)
{
    std::vector<ZipArchive::Entry> entries;
    QSet<QString> taken;
    for (const ImageJRoi& roi : rois) {
        QString base = roi.name.isEmpty() ? QStringLiteral("roi") : roi.name;
        base.replace(QLatin1Char('/'), QLatin1Char('_'));
        QString entry = base;
        for (int i = 2; taken.contains(entry); ++i)
            entry = QStringLiteral("%1-%2").arg(base).arg(i);
        taken.insert(entry);
        entries.push_back({ entry + QStringLiteral(".roi"), Encode(roi) });
    }
    return ZipArchive::Build(entries);
}

std::optional<std::vector<ImageJRoi>> ImageJRois::DecodeFile(
    const QByteArray& bytes, const QString& fileName, QString* error)
{
    const auto stem = [](QString name) {
        name = name.section(QLatin1Char('/'), -1);
        return name.endsWith(QStringLiteral(".roi"), Qt::CaseInsensitive) ? name.chopped(4) : name;
    };
    if (bytes.startsWith("Iout")) {
        std::optional<ImageJRoi> roi = Decode(bytes, stem(fileName), error);
        if (!roi)
            return std::nullopt;
        return std::vector<ImageJRoi> { *roi };
    }
    const std::optional<std::vector<ZipArchive::Entry>> entries = ZipArchive::Extract(bytes, error);
    if (!entries)
        return std::nullopt;
    std::vector<ImageJRoi> rois;
    for (const ZipArchive::Entry& entry : *entries) {
        if (!entry.name.endsWith(QStringLiteral(".roi"), Qt::CaseInsensitive))
            continue;
        QString why;
        std::optional<ImageJRoi> roi = Decode(entry.data, stem(entry.name), &why);
        if (!roi) {
            if (error)
                *error = QStringLiteral("%1: %2").arg(entry.name, why);
            return std::nullopt;
        }
        rois.push_back(std::move(*roi));
    }
    if (rois.empty()) {
        if (error)
            *error = QStringLiteral("the archive holds no ROIs");
        return std::nullopt;
    }
    return rois;
}

std::vector<ImageJRoi> ImageJRois::FromShapes(CGVLElemMgr& mgr)
{
    std::vector<ImageJRoi> rois;
    const auto lock = mgr.Lock();
    for (std::size_t i = 1; i < mgr.m_arShape.size(); ++i) {
        const CGVLShape& shape = *mgr.m_arShape[i];
        const char* word = KindWord(shape.m_nType);
        if (!word)
            continue;
        ImageJRoi roi;
        roi.name = QStringLiteral("%1-%2").arg(i, 4, 10, QLatin1Char('0')).arg(QString::fromLatin1(word));
        std::vector<QPointF> points(shape.m_arCoord.begin(), shape.m_arCoord.end());
        switch (ShapeType(shape.m_nType)) {
        case ShapeType::Line:
        case ShapeType::Arrow:
            if (points.size() != 2)
                continue;
            roi.type = ImageJRoi::Line;
            roi.subtype = shape.m_nType == int(ShapeType::Arrow) ? ImageJRoi::Arrow : ImageJRoi::Plain;
            roi.points = points;
            break;
        case ShapeType::Rect:
            if (points.size() != 4)
                continue;
            roi.type = ImageJRoi::Rect;
            roi.bounds = QRectF(points[0], points[3]).normalized();
            break;
        case ShapeType::Polygon: {
            const auto* polygon = dynamic_cast<const CGVLPolygon*>(&shape);
            if (points.size() < 2)
                continue;
            roi.type = polygon && polygon->IsClosed() && points.size() >= 3 ? ImageJRoi::Polygon
                                                                            : ImageJRoi::PolyLine;
            roi.points = points;
            break;
        }
        case ShapeType::Circle:
        case ShapeType::TriCircle: {
            QPointF centre;
            double radius = 0.0;
            if (const auto* circle = dynamic_cast<const CGVLCircle*>(&shape); circle && points.size() == 2) {
                centre = circle->ExactCoord(0);
                radius = circle->ExactRadius();
            } else if (const auto* tri = dynamic_cast<const CGVLCircleT*>(&shape);
                       tri && points.size() == 3) {
                centre = tri->IsSnapped()
                    ? CGVLCircleT::Circumcircle(tri->ExactCoord(0), tri->ExactCoord(1), tri->ExactCoord(2))
                          .centre
                    : QPointF(tri->FitCircle().centre);
                radius = tri->ExactRadius();
            }
            if (radius <= 0.0)
                continue;
            roi.type = ImageJRoi::Oval;
            roi.bounds = QRectF(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius);
            break;
        }
        case ShapeType::Angle:
            if (points.size() != 3)
                continue;
            roi.type = ImageJRoi::Angle;
            roi.points = points;
            break;
        case ShapeType::Point:
        case ShapeType::Counting:
            if (points.empty())
                continue;
            roi.type = ImageJRoi::Point;
            roi.points = { points[0] };
            break;
        case ShapeType::Text: {
            const auto* text = dynamic_cast<const CGVLAnoText*>(&shape);
            if (!text || points.empty())
                continue;
            roi.type = ImageJRoi::Rect;
            roi.subtype = ImageJRoi::Text;
            roi.text = text->m_arText.join(QLatin1Char('\n'));
            qsizetype longest = 1;
            for (const QString& line : text->m_arText)
                longest = std::max(longest, line.size());
            // ImageJ sizes the box from the font itself; this is a first guess.
            roi.bounds = QRectF(points[0],
                QSizeF(double(longest) * roi.fontSize * 0.6,
                    double(std::max<qsizetype>(1, text->m_arText.size())) * roi.fontSize * 1.3));
            break;
        }
        case ShapeType::Ruler:
        case ShapeType::Scale:
            continue;
        }
        rois.push_back(std::move(roi));
    }
    return rois;
}

int ImageJRois::ToShapes(CGVLElemMgr& mgr, const std::vector<ImageJRoi>& rois, int* skipped)
{
    QJsonArray shapes;
    int offered = 0;
    int left = 0;
    const auto add = [&shapes, &offered](ShapeType type, QJsonArray points, const QStringList& text = {}) {
        QJsonObject entry { { "type", int(type) }, { "points", points } };
        if (!text.isEmpty())
            entry.insert("text", QJsonArray::fromStringList(text));
        shapes.append(entry);
        ++offered;
    };
    for (const ImageJRoi& roi : rois) {
        const std::vector<QPointF>& p = roi.points;
        const QRectF& b = roi.bounds;
        if (roi.composite) {
            ++left;
        } else if (roi.type == ImageJRoi::Line && p.size() == 2) {
            add(roi.subtype == ImageJRoi::Arrow ? ShapeType::Arrow : ShapeType::Line, { Xy(p[0]), Xy(p[1]) });
        } else if (roi.type == ImageJRoi::Rect && roi.subtype == ImageJRoi::Text) {
            add(ShapeType::Text, { Xy(b.topLeft()) }, roi.text.split(QLatin1Char('\n')));
        } else if (roi.type == ImageJRoi::Rect) {
            add(ShapeType::Rect,
                { Xy(b.topLeft()), Xy(b.topRight()), Xy(b.bottomLeft()), Xy(b.bottomRight()) });
        } else if (roi.type == ImageJRoi::Oval && std::abs(b.width() - b.height()) < 0.5) {
            const QPointF centre = b.center();
            add(ShapeType::Circle, { Xy(centre), Xy(centre + QPointF(b.width() / 2, 0)) });
        } else if ((roi.type == ImageJRoi::Polygon || roi.type == ImageJRoi::Freehand
                       || roi.type == ImageJRoi::Traced)
            && p.size() >= 3) {
            QJsonArray points;
            for (const QPointF& q : p)
                points.append(Xy(q));
            add(ShapeType::Polygon, points);
        } else if (roi.type == ImageJRoi::Angle && p.size() == 3) {
            add(ShapeType::Angle, { Xy(p[0]), Xy(p[1]), Xy(p[2]) });
        } else if (roi.type == ImageJRoi::Point && !p.empty()) {
            for (const QPointF& q : p)
                add(ShapeType::Point, { Xy(q) });
        } else {
            ++left;
        }
    }
    const int made = ShapesFromJson(mgr, QJsonDocument(shapes).toJson(QJsonDocument::Compact));
    if (skipped)
        *skipped = left + (offered - made);
    return made;
}
