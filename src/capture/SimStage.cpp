#include "capture/SimStage.h"

#include "capture/CSimScene.h"
#include "capture/DrawInOwnThread.h"
#include "image/Registration.h"

#include <QFont>
#include <QPainter>
#include <QRadialGradient>

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <random>

SimStage::SimStage(const Options& options)
    : m_options(options)
{
    m_options.frame = m_options.frame.expandedTo(QSize(16, 16));
    m_options.fieldsAcross = std::max(1.5, m_options.fieldsAcross);
    m_options.fieldsDown = std::max(1.5, m_options.fieldsDown);
    // The slide's scale has numbers, drawn while the camera streams.
    DrawInOwnThread([this] { DrawSlide(); });
    // The lens darkens towards the corners, round about the centre.
    const int w = m_options.frame.width(), h = m_options.frame.height();
    const double loss = 1.0 - std::clamp(m_options.cornerShading, 0.05, 1.0);
    m_shading.resize(std::size_t(w) * h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const double dx = x + 0.5 - 0.5 * w, dy = y + 0.5 - 0.5 * h;
            const double r2 = (dx * dx + dy * dy) / (0.25 * (double(w) * w + double(h) * h));
            m_shading[std::size_t(y) * w + x] = float(1.0 - loss * r2);
        }
    MoveTo(QPointF(0.5 * (m_slide.width() - w), 0.5 * (m_slide.height() - h)));
}

double SimStage::MicrometresPerPixel() const
{
    return CSimScene::MicrometresPerPixel(unsigned(m_options.frame.width()));
}

void SimStage::DrawSlide()
{
    const double um = MicrometresPerPixel();
    const QSize field = m_options.frame;
    const int w = int(std::ceil(field.width() * m_options.fieldsAcross));
    const int h = int(std::ceil(field.height() * m_options.fieldsDown));
    const double widthUm = w * um, heightUm = h * um;
    QImage canvas(w, h, QImage::Format_RGB32);
    canvas.fill(QColor(226, 223, 212));
    QPainter p(&canvas);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(1.0 / um, 1.0 / um);
    std::mt19937 rng(m_options.seed);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    p.setPen(Qt::NoPen);

    // Mounting medium: faint blotches, and fine grain everywhere, so no part
    // of the slide is a blank the stage could not be tracked over.
    for (int i = 0; i < int(widthUm * heightUm / 60000.0); ++i) {
        const QPointF c(widthUm * unit(rng), heightUm * unit(rng));
        const double r = 60 + 200 * unit(rng);
        const int tone = unit(rng) < 0.5 ? 255 : 170;
        QRadialGradient g(c, r);
        g.setColorAt(0, QColor(tone, tone, tone - 20, 26));
        g.setColorAt(1, QColor(tone, tone, tone - 20, 0));
        p.setBrush(g);
        p.drawEllipse(c, r, r);
    }
    const double grain = 4.0 * um;
    for (int i = 0; i < int(widthUm * heightUm / (grain * grain * 6.0)); ++i) {
        const QPointF c(widthUm * unit(rng), heightUm * unit(rng));
        const double r = grain * (0.4 + 0.8 * unit(rng));
        const int tone = 120 + int(100 * unit(rng));
        p.setBrush(QColor(tone, tone - 6, tone - 24, 70));
        p.drawEllipse(c, r, r);
    }

    // Stained particles of 10 to 120 um, about fifteen per field.
    const double fieldArea = field.width() * um * field.height() * um;
    for (int i = 0; i < int(15.0 * widthUm * heightUm / fieldArea); ++i) {
        const QPointF c(widthUm * unit(rng), heightUm * unit(rng));
        const double r = 5.0 + 55.0 * unit(rng) * unit(rng);
        QRadialGradient g(c, r);
        g.setColorAt(0.0, QColor(150, 100, 175));
        g.setColorAt(0.8, QColor(112, 58, 140));
        g.setColorAt(1.0, QColor(80, 36, 105));
        p.setBrush(g);
        p.drawEllipse(c, r, r);
    }

    // Stage micrometers, 1 mm in 100 divisions of 10 um as on the camera's
    // slide, one in each quarter so that a scan crosses one.
    const QColor ink(28, 28, 34);
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(36);
    p.setFont(font);
    for (const QPointF& origin : { QPointF(0.25 * widthUm - 500, 0.3 * heightUm),
             QPointF(0.75 * widthUm - 500, 0.3 * heightUm), QPointF(0.25 * widthUm - 500, 0.75 * heightUm),
             QPointF(0.75 * widthUm - 500, 0.75 * heightUm) }) {
        p.setPen(Qt::NoPen);
        p.setBrush(ink);
        p.drawRect(QRectF(origin.x() - 1.5, origin.y() - 1.5, 1003, 3));
        for (int d = 0; d <= 100; ++d) {
            const double x = origin.x() + 10.0 * d;
            const double len = d % 10 == 0 ? 100.0 : d % 5 == 0 ? 70.0 : 40.0;
            p.setPen(Qt::NoPen);
            p.drawRect(QRectF(x - 1.5, origin.y() - len, 3, len));
            if (d % 10 == 0) {
                p.setPen(ink);
                p.drawText(QRectF(x - 60, origin.y() - len - 50, 120, 44), Qt::AlignHCenter | Qt::AlignBottom,
                    QString::number(d));
            }
        }
    }
    p.end();
    m_slide = canvas.convertToFormat(QImage::Format_RGB888);
    // The objective's own blur: no edge is sharper than about a pixel.
    cv::Mat rgb(m_slide.height(), m_slide.width(), CV_8UC3, m_slide.bits(), size_t(m_slide.bytesPerLine()));
    cv::GaussianBlur(rgb, rgb, cv::Size(), 0.7);
}

QPointF SimStage::Clamped(const QPointF& position) const
{
    // One pixel of room on each side for the sampling.
    const double maxX = m_slide.width() - m_options.frame.width() - 2.0;
    const double maxY = m_slide.height() - m_options.frame.height() - 2.0;
    return { std::clamp(position.x(), 1.0, maxX), std::clamp(position.y(), 1.0, maxY) };
}

void SimStage::MoveTo(const QPointF& position)
{
    m_position = Clamped(position);
}

SimStage::Frame SimStage::Capture()
{
    const std::uint64_t index = m_frames++;
    std::mt19937 rng(unsigned(m_options.seed * 7919u + index));
    std::normal_distribution<double> normal(0.0, 1.0);
    QPointF at = m_position;
    if (m_options.jitter > 0.0)
        at = Clamped(at + QPointF(normal(rng), normal(rng)) * m_options.jitter);

    const cv::Mat slide(m_slide.height(), m_slide.width(), CV_8UC3, const_cast<uchar*>(m_slide.constBits()),
        size_t(m_slide.bytesPerLine()));
    const cv::Size size(m_options.frame.width(), m_options.frame.height());
    cv::Mat frame = Registration::Sampled(slide, cv::Point2d(at.x(), at.y()), size);
    const cv::Mat shading(size, CV_32F, m_shading.data());
    cv::Mat shading3;
    cv::merge(std::vector<cv::Mat> { shading, shading, shading }, shading3);
    frame = frame.mul(shading3);
    if (m_options.noise > 0.0) {
        cv::Mat noise(size, CV_32FC3);
        cv::RNG cvRng(std::uint64_t(m_options.seed) << 32 | index);
        cvRng.fill(noise, cv::RNG::NORMAL, 0.0, m_options.noise);
        frame += noise;
    }
    QImage picture(size.width, size.height, QImage::Format_RGB888);
    cv::Mat out(size, CV_8UC3, picture.bits(), size_t(picture.bytesPerLine()));
    frame.convertTo(out, CV_8UC3);
    if (m_options.jpegQuality > 0)
        picture = QImage::fromData(CSimScene::Jpeg(picture, std::min(m_options.jpegQuality, 100)), "jpeg")
                      .convertToFormat(QImage::Format_RGB888);
    m_taken.push_back(at);
    return { picture, at };
}

std::vector<QPointF> SimStage::Serpentine(int columns, int rows, double step) const
{
    std::vector<QPointF> path;
    const QPointF start(0.25 * m_options.frame.width(), 0.25 * m_options.frame.height());
    for (int row = 0; row < rows; ++row)
        for (int i = 0; i < columns; ++i) {
            const int column = row % 2 == 0 ? i : columns - 1 - i;
            path.push_back(Clamped(start
                + QPointF(column * step * m_options.frame.width(), row * step * m_options.frame.height())));
        }
    return path;
}
