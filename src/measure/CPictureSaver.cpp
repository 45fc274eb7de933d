#include "measure/CPictureSaver.h"

#include "image/BurnIn.h"
#include "image/FCObjImage.h"
#include "image/ImageProcess.h"
#include "image/JpegSummary.h"
#include "image/PictureXmp.h"
#include "measure/CGVLElemMgr.h"
#include "measure/MeasurementXmp.h"

#include <QRect>
#include <QSize>

#include <vector>

namespace {

// The crop of an enlarged save and the sizes of enlargements 2 and 3.
constexpr QRect kEnlargementCrop(0, 0, 1280, 960);
constexpr QSize kEnlargementSizes[] = { {}, {}, { 1600, 1200 }, { 2048, 1536 } };

} // namespace

CPictureSaver::CPictureSaver(CGVLElemMgr& shapes, const SaveOverlay& overlay, const SaveTexts& texts)
    : m_shapes(shapes)
    , m_overlay(overlay)
    , m_texts(texts)
{
}

bool CPictureSaver::Save(const FCObjImage& clean, const QString& path)
{
    m_error.clear();
    m_bXmpFailed = false;
    m_xmpError.clear();
    m_bSummaryFailed = false;

    FCObjImage picture = clean;
    if (picture.IsValidImage()) {
        const int width = picture.Width();
        const int height = picture.Height();
        std::vector<uchar> bits(DibStride(width) * std::size_t(height));
        m_shapes.DrawToImage(bits.data(), width, height, m_overlay.measure, m_overlay.ruler, m_overlay.scale,
            m_overlay.time, m_overlay.title, m_texts.title);
        BurnInOverlay(picture, bits.data(), width, height);
    }

    // The file has the chosen size whatever the picture's: a smaller one is
    // enlarged from what it has of the crop.
    double scaleX = 1.0;
    double scaleY = 1.0;
    if ((m_nEnlargement == 2 || m_nEnlargement == 3) && picture.IsValidImage()) {
        const QSize size = kEnlargementSizes[m_nEnlargement];
        picture = picture.CopyRect(kEnlargementCrop);
        scaleX = double(picture.Width()) / size.width();
        scaleY = double(picture.Height()) / size.height();
        if (!picture.Stretch(size.width(), size.height()))
            picture.Destroy();
    }

    const bool saved = picture.Save(path);
    if (!saved)
        m_error = picture.ErrorString();
    // Shapes burnt in are pixels already; an enlarged picture no longer
    // matches their coordinates.
    if (saved && PictureXmp::CanHold(path)) {
        const bool withShapes = !m_overlay.measure && scaleX == 1.0 && scaleY == 1.0;
        m_bXmpFailed = !MeasurementXmp::Write(path, m_shapes, withShapes, scaleX, scaleY, &m_xmpError);
    }
    if (path.right(4) == QLatin1String(".jpg")
        && (!saved
            || !WriteJpegSummary(path, m_texts.title, m_texts.subject, m_texts.author, m_texts.comment)))
        m_bSummaryFailed = true;
    return saved;
}
