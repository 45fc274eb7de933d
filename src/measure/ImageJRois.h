#pragma once

#include <QByteArray>
#include <QPointF>
#include <QRectF>
#include <QString>

#include <optional>
#include <vector>

class CGVLElemMgr;

// One region of ImageJ's ".roi" format, as far as Oculix's shapes need it.
struct ImageJRoi
{
    // ImageJ's type numbers.
    enum Type : int {
        Polygon = 0,
        Rect = 1,
        Oval = 2,
        Line = 3,
        FreeLine = 4,
        PolyLine = 5,
        NoRoi = 6,
        Freehand = 7,
        Traced = 8,
        Angle = 9,
        Point = 10,
    };
    enum Subtype : int { Plain = 0, Text = 1, Arrow = 2 };

    int type = Polygon;
    int subtype = Plain;
    QString name;
    // Rectangles, ovals and text boxes.
    QRectF bounds;
    // The vertices (polygons, angles, points) or a line's two ends.
    std::vector<QPointF> points;
    // Text boxes.
    QString text;
    QString fontName = QStringLiteral("SansSerif");
    int fontSize = 12;
    // A shape ImageJ composed of several (kept as a path Oculix does not read).
    bool composite = false;
};

// ImageJ's ROI files (RoiEncoder/RoiDecoder's layout: a 64-byte header,
// coordinates relative to the bounds, sub-pixel floats, then a second header
// with the name) and ROI sets (a ZIP archive of them, as the ROI Manager
// keeps them), and the way between them and the shapes of an element manager.
class ImageJRois
{
public:
    static QByteArray Encode(const ImageJRoi& roi);
    // Null with a reason for bytes that are no ROI or are cut short; `name`
    // is used when the file carries none (an archive entry's name).
    static std::optional<ImageJRoi> Decode(const QByteArray& bytes, const QString& name, QString* error);

    // A ROI set, each under its name ("name.roi"), names made unique.
    static QByteArray EncodeSet(const std::vector<ImageJRoi>& rois);
    // A ".roi" file or a ROI set, told apart by their first bytes.
    static std::optional<std::vector<ImageJRoi>> DecodeFile(
        const QByteArray& bytes, const QString& fileName, QString* error);

    // The manager's shapes as ImageJ draws them: line, rectangle, polygon,
    // circles as ovals, angle, points and counting marks as points, arrow,
    // text; named with the element's number and kind. Ruler and scale stay.
    static std::vector<ImageJRoi> FromShapes(CGVLElemMgr& mgr);
    // Appends a shape for each ROI Oculix has a kind for (non-circular ovals,
    // open lines of several segments and composites have none: `skipped`
    // counts them), coordinates rounded to whole pixels. Returns how many
    // shapes were made.
    static int ToShapes(CGVLElemMgr& mgr, const std::vector<ImageJRoi>& rois, int* skipped = nullptr);
};
