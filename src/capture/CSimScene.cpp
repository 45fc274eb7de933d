#include "capture/CSimScene.h"

#include "capture/DrawInOwnThread.h"

#include <QBuffer>
#include <QFont>
#include <QImageWriter>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <opencv2/imgproc.hpp>
#include <random>

namespace {

constexpr int kNoiseSize = 1 << 16;

// Drift: two slow sines, about 12 um/s at most at 30 frames per second.
constexpr double kDriftXUm = 120.0;
constexpr double kDriftYUm = 80.0;
constexpr double kDriftPeriodX = 1800.0; // frames
constexpr double kDriftPeriodY = 1350.0;

inline uchar Clamp255(int v)
{
    return uchar(v < 0 ? 0 : v > 255 ? 255 : v);
}

// One row of YUY2: luma scaled by the vignetting gains of the column and the
// row (1.15 fixed point) plus noise, chroma copied. Eight pixels at a time in
// vector registers.
using V8u16 = std::uint16_t __attribute__((vector_size(16)));
using V8i32 = std::int32_t __attribute__((vector_size(32)));

void ShadeRow(const uchar* src, const std::uint16_t* gain, std::int32_t rowGain, const std::int16_t* noise,
    uchar* dst, unsigned pixels)
{
    unsigned x = 0;
    for (; x + 8 <= pixels; x += 8) {
        V8u16 pairs; // Y in the low byte, chroma in the high byte
        V8u16 g;
        std::int16_t n16[8];
        std::memcpy(&pairs, src + 2 * x, 16);
        std::memcpy(&g, gain + x, 16);
        std::memcpy(n16, noise + x, 16);
        const V8i32 luma = __builtin_convertvector(pairs & 0xFF, V8i32);
        const V8i32 both = (__builtin_convertvector(g, V8i32) * rowGain) >> 15;
        const V8i32 scaled = (luma * both) >> 15;
        V8i32 value = scaled + V8i32 { n16[0], n16[1], n16[2], n16[3], n16[4], n16[5], n16[6], n16[7] };
        value = value < 0 ? 0 : value;
        value = value > 255 ? 255 : value;
        const V8u16 out = __builtin_convertvector(value, V8u16) | (pairs & 0xFF00);
        std::memcpy(dst + 2 * x, &out, 16);
    }
    for (; x < pixels; ++x) {
        const std::uint32_t both = std::uint32_t(gain[x]) * std::uint32_t(rowGain) >> 15;
        const int luma = int(std::uint32_t(src[2 * x]) * both >> 15) + noise[x];
        dst[2 * x] = Clamp255(luma);
        dst[2 * x + 1] = src[2 * x + 1];
    }
}

} // namespace

CSimScene::CSimScene(unsigned width, unsigned height)
    : m_width(std::clamp(width & ~1u, 2u, 8192u))
    , m_height(std::max(1u, height))
    , m_umPerPixel(MicrometresPerPixel(m_width))
{
    DrawSlide();
    BuildNoise();
    BuildGains();
    AdjustSlide();
}

void CSimScene::DrawSlide()
{
    DrawInOwnThread([this] { DrawSlideInThisThread(); });
}

void CSimScene::DrawSlideInThisThread()
{
    // The slide is bigger than the field by the drift on every side.
    const double fieldHeightUm = m_height * m_umPerPixel;
    const double slideHeightUm = std::max(kSlideHeightUm, fieldHeightUm + 2 * kDriftYUm + 40.0);
    const int w = int(std::ceil(kSlideWidthUm / m_umPerPixel)) & ~1;
    const int h = int(std::ceil(slideHeightUm / m_umPerPixel));

    QImage canvas(w, h, QImage::Format_RGB32);
    canvas.fill(QColor(226, 223, 212));
    QPainter p(&canvas);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(1.0 / m_umPerPixel, 1.0 / m_umPerPixel);
    // Content is laid out around the slide's centre (1000, 900) um.
    m_slideShiftUm = (slideHeightUm - kSlideHeightUm) / 2;
    p.translate(0, m_slideShiftUm);
    if (m_controls.rotation != 0.0) {
        p.translate(kSlideWidthUm / 2, kSlideHeightUm / 2);
        p.rotate(m_controls.rotation);
        p.translate(-kSlideWidthUm / 2, -kSlideHeightUm / 2);
    }

    // Uneven illumination and mounting medium: a few faint blotches.
    std::minstd_rand blotchRng(7);
    for (int i = 0; i < 14; ++i) {
        const QPointF c(blotchRng() % 2000, blotchRng() % 1800);
        const double r = 150 + blotchRng() % 300;
        QRadialGradient g(c, r);
        const int tone = (i % 2) ? 255 : 180;
        g.setColorAt(0, QColor(tone, tone, tone - 20, 22));
        g.setColorAt(1, QColor(tone, tone, tone - 20, 0));
        p.setPen(Qt::NoPen);
        p.setBrush(g);
        p.drawEllipse(c, r, r);
    }

    // Stage micrometer: 1 mm in 100 divisions of 10 um, from x = 500 to 1500,
    // baseline at y = 620, ticks upwards: 40 um, 70 um at every 50 um, 100 um
    // at every 100 um, where the division count is written above.
    const QColor ink(28, 28, 34);
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    const double base = 620.0;
    const double lineUm = 3.0;
    p.drawRect(QRectF(500 - lineUm / 2, base - lineUm / 2, 1000 + lineUm, lineUm));
    QFont font("Liberation Sans");
    font.setPixelSize(36);
    p.setFont(font);
    for (int d = 0; d <= 100; ++d) {
        const double x = 500.0 + 10.0 * d;
        const double len = d % 10 == 0 ? 100.0 : d % 5 == 0 ? 70.0 : 40.0;
        p.setPen(Qt::NoPen);
        p.drawRect(QRectF(x - lineUm / 2, base - len, lineUm, len));
        if (d % 10 == 0) {
            p.setPen(ink);
            const QRectF box(x - 60, base - len - 50, 120, 44);
            p.drawText(box, Qt::AlignHCenter | Qt::AlignBottom, QString::number(d));
        }
    }
    p.setPen(ink);
    font.setPixelSize(30);
    p.setFont(font);
    p.drawText(
        QRectF(500, base + 14, 1000, 40), Qt::AlignHCenter | Qt::AlignTop, QStringLiteral("1 DIV = 0.01 mm"));

    // Stained round particles; the diameter is that of the outer edge.
    const double diameters[] = { 20, 50, 100, 150, 250 };
    const double centresX[] = { 430, 560, 740, 980, 1300 };
    for (int i = 0; i < 5; ++i) {
        const QPointF c(centresX[i], 880);
        const double r = diameters[i] / 2;
        QRadialGradient g(c, r);
        g.setColorAt(0.0, QColor(150, 100, 175));
        g.setColorAt(0.8, QColor(112, 58, 140));
        g.setColorAt(1.0, QColor(80, 36, 105));
        p.setPen(Qt::NoPen);
        p.setBrush(g);
        p.drawEllipse(c, r, r);
    }

    // A square of 200 um and an equilateral triangle of 200 um side.
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(64, 88, 140));
    p.drawRect(QRectF(550, 1080, 200, 200));
    const double side = 200.0;
    const double height = side * std::sqrt(3.0) / 2;
    QPainterPath tri;
    tri.moveTo(1150 - side / 2, 1180 + height / 2);
    tri.lineTo(1150 + side / 2, 1180 + height / 2);
    tri.lineTo(1150, 1180 - height / 2);
    tri.closeSubpath();
    p.setBrush(QColor(122, 72, 40));
    p.drawPath(tri);
    p.end();

    m_slide = canvas.convertToFormat(QImage::Format_RGB888);
    if (m_controls.blur > 0.0) {
        cv::Mat rgb(m_slide.height(), m_slide.width(), CV_8UC3, m_slide.bits(), m_slide.bytesPerLine());
        cv::GaussianBlur(rgb, rgb, cv::Size(), m_controls.blur, m_controls.blur, cv::BORDER_REPLICATE);
    }

    ConvertSlide();
}

void CSimScene::ConvertSlide()
{
    m_slideYuy2Stride = std::size_t(m_slide.width()) * 2;
    m_slideYuy2.assign(m_slideYuy2Stride * std::size_t(m_slide.height()), 0);
    if (m_controls.redBalance == 100 && m_controls.blueBalance == 100) {
        Yuy2FromRgb(m_slide, m_slideYuy2.data(), m_slideYuy2Stride);
        return;
    }
    // The camera's white balance scales red and blue before anything else.
    QImage balanced = m_slide.copy();
    for (int y = 0; y < balanced.height(); ++y) {
        uchar* px = balanced.scanLine(y);
        for (int x = 0; x < balanced.width(); ++x, px += 3) {
            px[0] = Clamp255((px[0] * m_controls.redBalance + 50) / 100);
            px[2] = Clamp255((px[2] * m_controls.blueBalance + 50) / 100);
        }
    }
    Yuy2FromRgb(balanced, m_slideYuy2.data(), m_slideYuy2Stride);
}

void CSimScene::Yuy2FromRgb(const QImage& rgb, uchar* dst, std::size_t stride)
{
    // BT.601, limited range, chroma of each pair averaged.
    for (int y = 0; y < rgb.height(); ++y) {
        const uchar* s = rgb.constScanLine(y);
        uchar* d = dst + y * stride;
        for (int x = 0; x + 1 < rgb.width(); x += 2, s += 6, d += 4) {
            int u = 0;
            int v = 0;
            for (int k = 0; k < 2; ++k) {
                const int r = s[3 * k];
                const int g = s[3 * k + 1];
                const int b = s[3 * k + 2];
                d[2 * k] = Clamp255((66 * r + 129 * g + 25 * b + 128) / 256 + 16);
                u += (-38 * r - 74 * g + 112 * b + 128) / 256 + 128;
                v += (112 * r - 94 * g - 18 * b + 128) / 256 + 128;
            }
            d[1] = Clamp255(u / 2);
            d[3] = Clamp255(v / 2);
        }
    }
}

void CSimScene::BuildNoise()
{
    m_noise.resize(kNoiseSize + m_width);
    std::minstd_rand rng(12345);
    if (m_controls.noiseLevel > 0.0) {
        std::normal_distribution<double> normal(0.0, m_controls.noiseLevel);
        for (int i = 0; i < kNoiseSize; ++i)
            m_noise[std::size_t(i)] = std::int16_t(std::clamp(std::lround(normal(rng)), -255L, 255L));
    } else {
        // Mild sensor noise, roughly normal with a spread of about 1.5 levels.
        for (int i = 0; i < kNoiseSize; ++i) {
            int sum = 0;
            for (int k = 0; k < 4; ++k)
                sum += int(rng() % 5) - 2;
            m_noise[std::size_t(i)] = std::int16_t(sum / 2);
        }
    }
    for (unsigned i = 0; i < m_width; ++i)
        m_noise[kNoiseSize + i] = m_noise[i];
}

void CSimScene::BuildGains()
{
    m_gainX.clear();
    m_gainY.clear();
    const bool vignette = m_controls.vignetting;
    const double uneven = std::clamp(m_controls.unevenLight, 0, 100) / 100.0;
    if (!vignette && uneven == 0.0)
        return;
    // Vignetting exp(-k r^2) is separable (the corners get about 75 %), and
    // so is the light falling off along each axis.
    const double k = vignette ? -std::log(0.75) : 0.0;
    auto fill = [k, uneven](std::vector<std::uint16_t>& table, unsigned n, double halfDiagonalShare) {
        table.resize(n);
        for (unsigned i = 0; i < n; ++i) {
            const double t = (i + 0.5 - n / 2.0) / (n / 2.0);
            double gain = std::exp(-k * halfDiagonalShare * t * t);
            if (uneven > 0.0)
                gain *= 1.0 - uneven * (i + 0.5) / n;
            table[i] = std::uint16_t(std::lround(32768.0 * gain));
        }
    };
    const double diag2 = double(m_width) * m_width + double(m_height) * m_height;
    fill(m_gainX, m_width, double(m_width) * m_width / diag2);
    fill(m_gainY, m_height, double(m_height) * m_height / diag2);
}

void CSimScene::SetControls(const Controls& controls)
{
    const Controls old = m_controls;
    m_controls = controls;
    const bool redraw = controls.rotation != old.rotation || controls.blur != old.blur;
    if (redraw)
        DrawSlide();
    else if (controls.redBalance != old.redBalance || controls.blueBalance != old.blueBalance)
        ConvertSlide();
    if (controls.noiseLevel != old.noiseLevel)
        BuildNoise();
    if (controls.vignetting != old.vignetting || controls.unevenLight != old.unevenLight)
        BuildGains();
    if (redraw || controls.redBalance != old.redBalance || controls.blueBalance != old.blueBalance
        || controls.brightness != old.brightness || controls.contrast != old.contrast
        || controls.saturation != old.saturation)
        AdjustSlide();
}

void CSimScene::AdjustSlide()
{
    // Brightness, contrast and saturation act on the slide once here, not on
    // every frame.
    uchar luma[256];
    uchar chroma[256];
    for (int i = 0; i < 256; ++i) {
        luma[i] = Clamp255((i - 128) * m_controls.contrast / 100 + 128 + m_controls.brightness);
        chroma[i] = Clamp255((i - 128) * m_controls.saturation / 100 + 128);
    }
    m_adjusted.resize(m_slideYuy2.size());
    for (std::size_t i = 0; i < m_slideYuy2.size(); i += 2) {
        m_adjusted[i] = luma[m_slideYuy2[i]];
        m_adjusted[i + 1] = chroma[m_slideYuy2[i + 1]];
    }
}

QPointF CSimScene::FramePoint(const QPointF& slideUm, std::uint64_t frame) const
{
    const double a = m_controls.rotation * std::numbers::pi / 180.0;
    const QPointF c(kSlideWidthUm / 2, kSlideHeightUm / 2);
    const QPointF d = slideUm - c;
    const QPointF turned(c.x() + d.x() * std::cos(a) - d.y() * std::sin(a),
        c.y() + d.x() * std::sin(a) + d.y() * std::cos(a) + m_slideShiftUm);
    const QPoint off = Offset(m_controls.drift ? frame : 0);
    // Pixel i covers [i, i + 1) of the painted slide, so its centre is i + 0.5.
    return turned / m_umPerPixel - QPointF(off) - QPointF(0.5, 0.5);
}

QPoint CSimScene::Offset(std::uint64_t frame) const
{
    const double fieldHeightUm = m_height * m_umPerPixel;
    const double slideHeightPx = m_slideYuy2.size() / m_slideYuy2Stride;
    const double cx = (kSlideWidthUm - kFieldWidthUm) / 2
        + kDriftXUm * std::sin(2 * std::numbers::pi * double(frame % 1800) / kDriftPeriodX);
    const double cy = (slideHeightPx * m_umPerPixel - fieldHeightUm) / 2
        + kDriftYUm * std::sin(2 * std::numbers::pi * double(frame % 1350) / kDriftPeriodY + 1.0);
    const int x = int(std::lround(cx / m_umPerPixel)) & ~1;
    const int y = int(std::lround(cy / m_umPerPixel));
    const int maxX = m_slide.width() - int(m_width);
    const int maxY = m_slide.height() - int(m_height);
    return QPoint(std::clamp(x, 0, std::max(0, maxX)) & ~1, std::clamp(y, 0, std::max(0, maxY)));
}

int CSimScene::NoiseStart(std::uint64_t frame) const
{
    // A cheap hash of the frame number picks where the noise table starts.
    std::uint64_t z = frame * 0x9E3779B97F4A7C15ull;
    z ^= z >> 29;
    return int(z & (kNoiseSize - 1));
}

void CSimScene::RenderYuy2(std::uint64_t frame, uchar* dst, std::size_t stride) const
{
    const QPoint off = Offset(m_controls.drift ? frame : 0);
    const bool shaded = !m_gainX.empty();
    const bool noisy = m_controls.noise;
    int noise = NoiseStart(frame);
    const unsigned rowsAvailable = unsigned(m_slide.height() - off.y());
    const std::size_t rowBytes = std::size_t(m_width) * 2;
    const std::size_t slideBytes = std::min(rowBytes, m_slideYuy2Stride - std::size_t(off.x()) * 2);
    const unsigned pixels = unsigned(slideBytes / 2);
    static const std::vector<std::uint16_t> flat(8192, 32768);
    static const std::vector<std::int16_t> silence(std::size_t(kNoiseSize) + 8192, 0);
    for (unsigned y = 0; y < m_height; ++y) {
        uchar* d = dst + y * stride;
        unsigned x = 0;
        if (y < rowsAvailable) {
            const uchar* s = m_adjusted.data() + (off.y() + y) * m_slideYuy2Stride + std::size_t(off.x()) * 2;
            const std::uint16_t* gain = shaded ? m_gainX.data() : flat.data();
            const std::int32_t rowGain = shaded ? m_gainY[y] : 32768;
            const std::int16_t* n = noisy ? m_noise.data() + noise : silence.data();
            ShadeRow(s, gain, rowGain, n, d, pixels);
            x = pixels;
            noise = (noise + int(m_width)) & (kNoiseSize - 1);
        }
        for (; x < m_width; ++x) {
            d[2 * x] = 16;
            d[2 * x + 1] = 128;
        }
    }
}

QImage CSimScene::RenderRgb(std::uint64_t frame) const
{
    std::vector<uchar> yuy2(std::size_t(m_width) * 2 * m_height);
    RenderYuy2(frame, yuy2.data(), std::size_t(m_width) * 2);
    QImage rgb(int(m_width), int(m_height), QImage::Format_RGB888);
    for (unsigned y = 0; y < m_height; ++y) {
        const uchar* s = yuy2.data() + std::size_t(y) * m_width * 2;
        uchar* d = rgb.scanLine(int(y));
        for (unsigned x = 0; x < m_width; x += 2, s += 4, d += 6) {
            const int u = s[1] - 128;
            const int v = s[3] - 128;
            for (int k = 0; k < 2; ++k) {
                const int c = 298 * (s[2 * k] - 16);
                d[3 * k] = Clamp255((c + 409 * v + 128) >> 8);
                d[3 * k + 1] = Clamp255((c - 100 * u - 208 * v + 128) >> 8);
                d[3 * k + 2] = Clamp255((c + 516 * u + 128) >> 8);
            }
        }
    }
    return rgb;
}

QByteArray CSimScene::RenderJpeg(std::uint64_t frame, int quality) const
{
    return Jpeg(RenderRgb(frame), quality);
}

QByteArray CSimScene::Jpeg(const QImage& picture, int quality)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(quality);
    writer.write(picture);
    return bytes;
}
