#pragma once

#include <QImage>
#include <QPointF>
#include <QSize>

#include <cstdint>
#include <vector>

// The simulated microscope's stage: a slide several fields of view across,
// moved under the objective by hand or along a scripted path. Each frame is
// the field at the stage's position, off by a little jitter, sampled at that
// sub-pixel place, darkened towards the corners by the lens, with sensor
// noise and, when asked, JPEG artefacts. The ground truth, the whole slide
// and where every frame was taken, is kept for tests and benchmarks
// (docs/SimulatedCamera.md).
class SimStage
{
public:
    struct Options
    {
        QSize frame { 640, 480 };
        // The slide's size in fields of view.
        double fieldsAcross = 4.0;
        double fieldsDown = 4.0;
        // Brightness of a frame's corner relative to its centre.
        double cornerShading = 0.75;
        // Spread of the stage's jitter, in pixels along each axis.
        double jitter = 0.0;
        // Spread of the sensor noise, in brightness levels.
        double noise = 0.0;
        // 1..100: frames pass through JPEG at this quality; 0: not.
        int jpegQuality = 0;
        unsigned seed = 1;
    };

    explicit SimStage(const Options& options);

    // Micrometres per pixel, as the simulated camera has at that frame width.
    double MicrometresPerPixel() const;
    // The slide, drawn once, in the frames' scale (RGB888).
    const QImage& Slide() const { return m_slide; }
    QSize FrameSize() const { return m_options.frame; }

    // The stage's position: the field's top-left corner on the slide, in
    // slide pixels. It stays where a whole frame fits on the slide.
    QPointF Position() const { return m_position; }
    void MoveTo(const QPointF& position);
    void MoveBy(const QPointF& step) { MoveTo(m_position + step); }

    struct Frame
    {
        QImage picture; // RGB888
        QPointF truth; // where its top-left pixel lies on the slide
    };
    // A frame at the stage's position; every frame is kept in Taken().
    Frame Capture();
    const std::vector<QPointF>& Taken() const { return m_taken; }

    // A scan of the slide row by row, back and forth (as a user scans by
    // hand), of columns x rows fields, each `step` of a field from the last,
    // starting a quarter field in from the top-left corner.
    std::vector<QPointF> Serpentine(int columns, int rows, double step) const;

private:
    QPointF Clamped(const QPointF& position) const;
    void DrawSlide();

    Options m_options;
    QImage m_slide;
    QPointF m_position;
    std::vector<QPointF> m_taken;
    std::vector<float> m_shading; // per pixel of a frame
    std::uint64_t m_frames = 0;
};
