#pragma once

#include <QByteArray>

class CGVLElemMgr;

// The elements of a manager as compact JSON, for keeping them with a saved
// picture: an array of {"type": id, "points": [[x, y], ...]} in list order,
// text elements with "text": [lines]. The ruler (element 0) and the scale are
// not kept; they belong to the view, not to the picture.
QByteArray ShapesToJson(CGVLElemMgr& mgr);

// Recreates the elements of ShapesToJson by replaying the clicks and drags
// that made them, so they come back as editable as drawn ones, appended to
// the manager's list. Entries that are malformed or of unknown types are
// skipped. Returns how many elements were made.
int ShapesFromJson(CGVLElemMgr& mgr, const QByteArray& json);
