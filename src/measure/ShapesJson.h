#pragma once

#include <QByteArray>
#include <QString>

class CGVLElemMgr;

// The elements of a manager as compact JSON, for keeping them with a saved
// picture: an array with one array per element in list order, its type id,
// then its points as x, y numbers, then for a text element its lines as
// strings. The ruler (element 0) and the scale are not kept; they belong to
// the view, not to the picture.
QByteArray ShapesToJson(CGVLElemMgr& mgr);

// How much of a picture's shapes the program takes: it draws every element on
// every repaint, and a picture is opened in well under a second within these.
// The rest is left out, and said so.
namespace StoredShapeLimits {
inline constexpr int kShapes = 50000;
inline constexpr qsizetype kPoints = 500000; // all elements' together
// Either way from the origin: ten times the largest picture a camera gives,
// and far from where the area's integer products could overflow.
inline constexpr int kCoordinate = 100000;
inline constexpr qsizetype kText = 16 * 1024 * 1024;
} // namespace StoredShapeLimits

// What reading a picture's shapes made and left out.
struct ShapesRead
{
    int made = 0;
    // Degenerate elements are dropped as when drawn and counted nowhere.
    int damaged = 0; // malformed, or of a kind this program does not know
    int outOfReach = 0; // a coordinate beyond kCoordinate
    int overLimit = 0; // past kShapes or kPoints
    bool tooLarge = false; // the text is longer than kText: nothing read

    // What was left out and why, for the user; empty when nothing was.
    QString Note() const;
};

// Rebuilds the elements of ShapesToJson, and of the older form (an array of
// {"type": id, "points": [[x, y], ...], "text": [lines]}), directly from their
// points through the shape kinds table, finished and as editable as drawn
// ones, appended to the manager's list in one step.
ShapesRead ReadShapesJson(CGVLElemMgr& mgr, const QByteArray& json);
// The same, answering how many elements were made.
int ShapesFromJson(CGVLElemMgr& mgr, const QByteArray& json);
