#include "capture/LiveMosaic.h"

#include "image/Stitcher.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

// A field's longer side in the display copy.
constexpr double kMosaicPreviewSide = 320.0;
// Ground shown before the mosaic reaches it.
const QColor kMosaicUncovered(48, 48, 48);

// A frame wrongly placed spoils the mosaic for good, one refused costs a
// frame of 30 a second: a live mosaic asks for agreement all over.
Stitcher::Options TrackingOptions()
{
    Stitcher::Options options;
    options.minAgreement = 0.7;
    return options;
}

} // namespace

LiveMosaic::LiveMosaic(double newGround)
    : m_newGround(newGround)
    , m_stitcher(std::make_unique<Stitcher>(TrackingOptions()))
    , m_worker([this] { Run(); })
{
}

LiveMosaic::~LiveMosaic()
{
    Close();
}

bool LiveMosaic::Offer(const QImage& frame)
{
    if (frame.isNull())
        return false;
    {
        std::lock_guard lock(m_mutex);
        if (m_closed || m_busy || !m_pending.isNull())
            return false;
        m_pending = frame;
        m_busy = true;
    }
    m_wake.notify_one();
    return true;
}

bool LiveMosaic::Ready() const
{
    std::lock_guard lock(m_mutex);
    return !m_closed && !m_busy;
}

LiveMosaic::Status LiveMosaic::State() const
{
    std::lock_guard lock(m_mutex);
    return m_status;
}

LiveMosaic::Preview LiveMosaic::Shown() const
{
    std::lock_guard lock(m_mutex);
    return m_shown;
}

Stitcher& LiveMosaic::Close()
{
    {
        std::lock_guard lock(m_mutex);
        m_closed = true;
    }
    m_wake.notify_one();
    if (m_worker.joinable())
        m_worker.join();
    return *m_stitcher;
}

void LiveMosaic::Run()
{
    std::optional<QPointF> last;
    for (;;) {
        QImage frame;
        {
            std::unique_lock lock(m_mutex);
            m_wake.wait(lock, [this] { return m_closed || !m_pending.isNull(); });
            if (m_pending.isNull())
                return;
            frame = std::move(m_pending);
            m_pending = QImage();
        }
        QString why;
        const Stitcher::Tracked tracked = m_stitcher->Track(frame, m_newGround, last, &why);
        if (tracked.added)
            Paint(frame, tracked.position);
        std::lock_guard lock(m_mutex);
        ++m_status.tracked;
        m_status.frameSize = frame.size();
        m_status.lost = !tracked.found;
        if (tracked.found) {
            last = tracked.position;
            m_status.field = tracked.position;
            m_status.tiles = m_stitcher->Count();
        } else {
            ++m_status.skipped;
            m_status.why = why;
        }
        if (tracked.added)
            m_shown = m_canvas;
        m_busy = false;
    }
}

void LiveMosaic::Paint(const QImage& frame, QPointF at)
{
    if (m_canvas.picture.isNull())
        m_canvas.scale = std::min(1.0, kMosaicPreviewSide / std::max(frame.width(), frame.height()));
    const double scale = m_canvas.scale;
    const QRectF field(at, QSizeF(frame.size()));
    if (!m_canvas.area.contains(field)) {
        // Grown by half a field beyond the new frame, so a scan that goes on
        // the same way does not make a new canvas for every tile.
        const QRectF margin = field.adjusted(
            -0.5 * field.width(), -0.5 * field.height(), 0.5 * field.width(), 0.5 * field.height());
        const QRectF area = m_canvas.picture.isNull() ? field : m_canvas.area.united(margin);
        QImage grown(int(std::ceil(area.width() * scale)), int(std::ceil(area.height() * scale)),
            QImage::Format_RGB888);
        grown.fill(kMosaicUncovered);
        if (!m_canvas.picture.isNull()) {
            QPainter painter(&grown);
            painter.drawImage((m_canvas.area.topLeft() - area.topLeft()) * scale, m_canvas.picture);
        }
        m_canvas.picture = std::move(grown);
        m_canvas.area = area;
    }
    m_canvas.covered = m_canvas.covered.isEmpty() ? field : m_canvas.covered.united(field);
    QPainter painter(&m_canvas.picture);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(
        QRectF((field.topLeft() - m_canvas.area.topLeft()) * scale, field.size() * scale), frame);
}
