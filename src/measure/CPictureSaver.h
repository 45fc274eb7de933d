#pragma once

#include <QString>

class CGVLElemMgr;
class FCObjImage;

// What a save burns into the picture, in the order the save routine takes it.
struct SaveOverlay
{
    bool measure = false;
    bool ruler = false;
    bool scale = false;
    bool time = false;
    bool title = false;
};

// The summary texts of a JPEG file; the quick save has no subject or comment.
struct SaveTexts
{
    QString title;
    QString subject;
    QString author;
    QString comment;
};

// Writes a picture with its measurements: the chosen overlay burnt into a copy
// (the caller keeps the clean picture), optionally enlarged, encoded and put
// in place (an old file of that name is replaced only once the new one is
// whole), with the calibration (and the shapes when they are not burnt in) as
// XMP data in JPEG, PNG and TIFF files and the summary texts in ".jpg" files.
// It tells nobody: the caller reports what the getters say.
class CPictureSaver
{
public:
    CPictureSaver(CGVLElemMgr& shapes, const SaveOverlay& overlay, const SaveTexts& texts);

    // 2 and 3 enlarge the picture's top-left 1280 x 960 to 1600 x 1200 or
    // 2048 x 1536 (a smaller picture gives what it has of that corner); the
    // shapes then stay out of the XMP data and the calibration is scaled.
    // Anything else keeps the size.
    void SetEnlargement(int resolution) { m_nEnlargement = resolution; }

    // True when the picture was written.
    bool Save(const FCObjImage& picture, const QString& path);

    // After Save: why the picture was not written.
    const QString& ErrorString() const { return m_error; }
    // The picture was written without its XMP data, and why.
    bool XmpFailed() const { return m_bXmpFailed; }
    const QString& XmpError() const { return m_xmpError; }
    // A ".jpg" path whose summary is missing, also because the picture
    // itself was not written (an older file of that name is left alone).
    bool SummaryFailed() const { return m_bSummaryFailed; }

private:
    CGVLElemMgr& m_shapes;
    SaveOverlay m_overlay;
    SaveTexts m_texts;
    int m_nEnlargement = 1;
    QString m_error;
    bool m_bXmpFailed = false;
    QString m_xmpError;
    bool m_bSummaryFailed = false;
};
