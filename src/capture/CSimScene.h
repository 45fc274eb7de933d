#pragma once

#include <QByteArray>
#include <QImage>
#include <QPoint>
#include <QPointF>

#include <cstdint>
#include <vector>

// The picture of the simulated microscope camera: a slide with a stage
// micrometer and test objects of known size, seen through a field of view
// 1600 um wide whatever the frame size, drifting slowly, with mild noise and
// vignetting; for judging measurements it can also turn the slide, blur it
// (defocus), add strong noise and light the field unevenly. The slide is drawn once per frame size; a frame
// is a window into it, so a frame costs a copy and a few table look-ups per pixel.
//
// Everything is a function of the frame number, so two cameras of the same
// size deliver the same bytes. The ground truth is in docs/SimulatedCamera.md.
class CSimScene
{
public:
    // Width of the field of view in micrometres, for every frame size.
    static constexpr double kFieldWidthUm = 1600.0;
    // Size of the slide drawn, in micrometres.
    static constexpr double kSlideWidthUm = 2000.0;
    static constexpr double kSlideHeightUm = 1800.0;

    CSimScene(unsigned width, unsigned height);

    static double MicrometresPerPixel(unsigned width) { return kFieldWidthUm / width; }

    unsigned Width() const { return m_width; }
    unsigned Height() const { return m_height; }

    // Top-left corner of frame n on the slide, in slide pixels; x is even so
    // that YUY2 pairs stay aligned.
    QPoint Offset(std::uint64_t frame) const;

    // Picture adjustments, the camera's own controls.
    struct Controls
    {
        int brightness = 0; // -64..64, added to luma
        int contrast = 100; // 0..200 percent around mid-gray
        int saturation = 100; // 0..200 percent
        bool vignetting = true;
        bool noise = true;
        // Off: the slide stands still at its first position.
        bool drift = true;
        // The slide turned clockwise on the screen about its centre
        // (1000, 900) um, in degrees.
        double rotation = 0.0;
        // Defocus: a Gaussian blur of this spread in frame pixels.
        double blur = 0.0;
        // With noise on: normal noise of this spread in luma levels instead
        // of the mild default (0).
        double noiseLevel = 0.0;
        // Light falling off linearly by this many percent from the left edge
        // to the right one and again from the top edge to the bottom one.
        int unevenLight = 0;
        // White balance: gains of the red and blue channels in percent.
        int redBalance = 100;
        int blueBalance = 100;
    };
    void SetControls(const Controls& controls);

    // Frame n as packed YUY2 (Y0 U Y1 V), rows top-down, stride >= width * 2.
    void RenderYuy2(std::uint64_t frame, uchar* dst, std::size_t stride) const;
    // Frame n as 24-bit RGB888 (top-down), the source of the JPEG frames.
    QImage RenderRgb(std::uint64_t frame) const;
    // Frame n as a baseline JPEG, as a camera's MJPG mode sends it.
    QByteArray RenderJpeg(std::uint64_t frame, int quality = 80) const;

    // An RGB888 picture as packed YUY2 (BT.601, limited range), as the
    // camera sends it; the width is even.
    static void Yuy2FromRgb(const QImage& rgb, uchar* dst, std::size_t stride);
    // A picture as a baseline JPEG of that quality.
    static QByteArray Jpeg(const QImage& picture, int quality);

    // The slide as drawn, before noise and vignetting (tests, documentation).
    const QImage& Slide() const { return m_slide; }

    // Where a point of the slide (micrometres) appears in frame n, in pixel
    // coordinates whose integers are pixel centres: the ground truth that
    // measurements on the frames are judged by.
    QPointF FramePoint(const QPointF& slideUm, std::uint64_t frame) const;

private:
    void DrawSlide();
    void DrawSlideInThisThread();
    void ConvertSlide();
    void BuildNoise();
    void BuildGains();
    void AdjustSlide();
    int NoiseStart(std::uint64_t frame) const;

    unsigned m_width;
    unsigned m_height;
    double m_umPerPixel;
    double m_slideShiftUm = 0.0; // the content's downward shift on a tall slide
    QImage m_slide; // RGB888
    std::vector<uchar> m_slideYuy2; // the slide in YUY2, m_slide.width() * 2 per row
    std::vector<uchar> m_adjusted; // the same with the controls applied
    std::size_t m_slideYuy2Stride = 0;
    // Vignetting and uneven light, 1.15 fixed point; empty when both are off.
    std::vector<std::uint16_t> m_gainX;
    std::vector<std::uint16_t> m_gainY;
    // Noise added to luma, repeated once per kNoiseSize values; one frame row
    // more than that is kept so a row never wraps.
    std::vector<std::int16_t> m_noise;
    Controls m_controls;
};
