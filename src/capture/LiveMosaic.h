#pragma once

#include <QImage>
#include <QPointF>
#include <QRect>
#include <QSize>
#include <QString>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

class Stitcher;

// Stitches the frames of a live camera as the user moves the stage: each
// frame offered is tracked on a worker thread of its own against what has
// been built (Stitcher::Track), and kept as a tile when it shows new
// ground. A frame offered while the worker is still busy with the last one
// is dropped, so the camera never waits. A frame that cannot be placed (the
// stage moved too fast, or off the covered ground) is skipped and the
// mosaic is "lost" until a frame is placed again.
class LiveMosaic
{
public:
    struct Status
    {
        int tracked = 0; // frames the worker looked at
        int skipped = 0; // of those, frames that could not be placed
        int tiles = 0;
        bool lost = false;
        QString why; // why the last skipped frame was skipped
        // The last placed frame, in the first frame's pixels.
        QPointF field;
        QSize frameSize;
    };
    // The mosaic as built so far, reduced for display: tiles are laid over
    // one another without blending. `area` is the part of the first frame's
    // pixel space the picture shows, at `scale` display pixels per pixel;
    // the tiles cover `covered` of it.
    struct Preview
    {
        QImage picture;
        QRectF area;
        QRectF covered;
        double scale = 1.0;
    };

    // newGround: the share of a frame outside every tile that earns it a tile.
    explicit LiveMosaic(double newGround = 0.15);
    ~LiveMosaic();
    LiveMosaic(const LiveMosaic&) = delete;
    LiveMosaic& operator=(const LiveMosaic&) = delete;

    // False (the frame dropped) while the worker is busy or after Close.
    bool Offer(const QImage& frame);
    // Whether Offer would take a frame now: a caller spares the copy of one
    // that would be dropped.
    bool Ready() const;
    Status State() const;
    Preview Shown() const;

    // Takes no more frames, waits for the one in hand and gives the stitcher
    // over: the worker no longer touches it.
    Stitcher& Close();

private:
    void Run();
    void Paint(const QImage& frame, QPointF at);

    const double m_newGround;
    std::unique_ptr<Stitcher> m_stitcher; // the worker's alone until Close
    Preview m_canvas; // the worker's alone

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    QImage m_pending;
    bool m_busy = false;
    bool m_closed = false;
    Status m_status;
    Preview m_shown;
    std::thread m_worker;
};
