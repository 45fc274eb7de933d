#include "image/LiveFocusStack.h"

#include "image/FocusStack.h"

#include <QCoreApplication>
#include <QPainter>

#include <algorithm>
#include <opencv2/imgproc.hpp>

namespace {

// A frame must add detail on this share of its blocks to be kept.
constexpr double kNewShare = 0.01;
// ... by at least this factor over the best kept view of the block.
constexpr float kBetter = 1.15f;
// A block is covered once its best view has this factor over its worst, and
// its detail is above the noise (squared levels).
constexpr float kCovered = 2.0f;
constexpr float kNoiseFloor = 25.0f;

// Per block, the mean squared gradient of the green channel.
cv::Mat BlockDetail(const QImage& frame, int blocksX, int blocksY)
{
    const QImage rgb = frame.convertToFormat(QImage::Format_RGB888);
    const cv::Mat image(rgb.height(), rgb.width(), CV_8UC3, const_cast<uchar*>(rgb.constBits()),
        std::size_t(rgb.bytesPerLine()));
    cv::Mat green;
    cv::extractChannel(image, green, 1);
    cv::Mat dx;
    cv::Mat dy;
    cv::Sobel(green, dx, CV_32F, 1, 0, 3, 0.25);
    cv::Sobel(green, dy, CV_32F, 0, 1, 3, 0.25);
    cv::Mat energy = dx.mul(dx) + dy.mul(dy);
    cv::Mat blocks;
    cv::resize(energy, blocks, cv::Size(blocksX, blocksY), 0, 0, cv::INTER_AREA);
    return blocks;
}

// The depth map (8-bit gray, frame index scaled to 0..255) in a colour scale,
// with the scale drawn beneath it from the first frame to the last.
QImage ColourDepth(const QImage& gray, int frames)
{
    const cv::Mat g(gray.height(), gray.width(), CV_8U, const_cast<uchar*>(gray.constBits()),
        std::size_t(gray.bytesPerLine()));
    const int band = std::max(24, gray.height() / 16);
    QImage out(gray.width(), gray.height() + band, QImage::Format_RGB888);
    cv::Mat picture(out.height(), out.width(), CV_8UC3, out.bits(), std::size_t(out.bytesPerLine()));
    cv::Mat top = picture.rowRange(0, gray.height());
    cv::applyColorMap(g, top, cv::COLORMAP_VIRIDIS);
    cv::cvtColor(top, top, cv::COLOR_BGR2RGB);
    cv::Mat ramp(1, out.width(), CV_8U);
    for (int x = 0; x < out.width(); ++x)
        ramp.at<uchar>(0, x) = uchar(x * 255 / std::max(1, out.width() - 1));
    cv::Mat rampColour;
    cv::applyColorMap(ramp, rampColour, cv::COLORMAP_VIRIDIS);
    cv::cvtColor(rampColour, rampColour, cv::COLOR_BGR2RGB);
    for (int y = gray.height(); y < out.height(); ++y)
        rampColour.copyTo(picture.row(y));
    QPainter p(&out);
    QFont font = p.font();
    font.setPixelSize(band * 2 / 3);
    p.setFont(font);
    const QRect scale(4, gray.height(), out.width() - 8, band);
    p.setPen(Qt::white);
    p.drawText(
        scale, Qt::AlignLeft | Qt::AlignVCenter, QCoreApplication::translate("LiveFocusStack", "frame 1"));
    p.setPen(Qt::black);
    p.drawText(scale, Qt::AlignRight | Qt::AlignVCenter,
        QCoreApplication::translate("LiveFocusStack", "frame %1").arg(frames));
    return out;
}

} // namespace

LiveFocusStack::LiveFocusStack()
    : m_stack(std::make_unique<FocusStack>())
    , m_thread([this] { Run(); })
{
}

LiveFocusStack::~LiveFocusStack()
{
    Finish();
}

bool LiveFocusStack::Offer(const QImage& frame)
{
    std::lock_guard lock(m_mutex);
    if (m_busy || m_quit || frame.isNull())
        return false;
    m_pending = frame;
    m_busy = true;
    m_wake.notify_all();
    return true;
}

void LiveFocusStack::Finish()
{
    {
        std::lock_guard lock(m_mutex);
        m_quit = true;
        m_wake.notify_all();
    }
    if (m_thread.joinable())
        m_thread.join();
}

bool LiveFocusStack::Busy() const
{
    std::lock_guard lock(m_mutex);
    return m_busy;
}

void LiveFocusStack::WaitIdle() const
{
    std::unique_lock lock(m_mutex);
    m_wake.wait(lock, [this] { return !m_busy; });
}

int LiveFocusStack::Seen() const
{
    std::lock_guard lock(m_mutex);
    return m_seen;
}

int LiveFocusStack::Kept() const
{
    std::lock_guard lock(m_mutex);
    return m_kept;
}

QImage LiveFocusStack::Coverage() const
{
    // A copy of its own: pictures that share their pixels count their users
    // in a way the thread checker cannot follow.
    std::lock_guard lock(m_mutex);
    return m_coverage.copy();
}

QString LiveFocusStack::ErrorString() const
{
    std::lock_guard lock(m_mutex);
    return m_error;
}

QImage LiveFocusStack::Result() const
{
    return m_thread.joinable() ? QImage() : m_stack->Result();
}

QImage LiveFocusStack::DepthPicture() const
{
    if (m_thread.joinable() || m_stack->Count() == 0)
        return QImage();
    return ColourDepth(m_stack->DepthPicture(), m_stack->Count());
}

void LiveFocusStack::Run()
{
    for (;;) {
        QImage frame;
        {
            std::unique_lock lock(m_mutex);
            // A frame handed over before Finish is still judged.
            m_wake.wait(lock, [this] { return m_quit || m_busy; });
            if (!m_busy)
                return;
            frame = std::move(m_pending);
            m_pending = QImage();
        }
        Judge(frame);
        std::lock_guard lock(m_mutex);
        m_busy = false;
        m_wake.notify_all();
    }
}

void LiveFocusStack::Judge(const QImage& frame)
{
    if (m_blocksX == 0) {
        m_blocksX = std::max(1, (frame.width() + kBlock - 1) / kBlock);
        m_blocksY = std::max(1, (frame.height() + kBlock - 1) / kBlock);
    }
    const cv::Mat detail = BlockDetail(frame, m_blocksX, m_blocksY);
    const std::size_t blocks = std::size_t(m_blocksX) * std::size_t(m_blocksY);
    const float* d = detail.ptr<float>();
    if (m_least.empty()) {
        m_least.assign(d, d + blocks);
        m_best.assign(blocks, 0.0f);
    }
    std::size_t better = 0;
    for (std::size_t i = 0; i < blocks; ++i) {
        m_least[i] = std::min(m_least[i], d[i]);
        better += d[i] > kBetter * m_best[i] && d[i] > kNoiseFloor;
    }
    const bool keep = m_stack->Count() == 0 || double(better) >= kNewShare * double(blocks);
    bool added = false;
    QString error;
    if (keep) {
        added = m_stack->Add(frame);
        if (added)
            for (std::size_t i = 0; i < blocks; ++i)
                m_best[i] = std::max(m_best[i], d[i]);
        else
            error = m_stack->ErrorString();
    }
    QImage coverage(m_blocksX, m_blocksY, QImage::Format_Grayscale8);
    for (int y = 0; y < m_blocksY; ++y) {
        uchar* line = coverage.scanLine(y);
        for (int x = 0; x < m_blocksX; ++x) {
            const std::size_t i = std::size_t(y) * std::size_t(m_blocksX) + std::size_t(x);
            line[x] = m_best[i] > kNoiseFloor && m_best[i] >= kCovered * m_least[i] ? 255 : 0;
        }
    }
    std::lock_guard lock(m_mutex);
    ++m_seen;
    m_kept += added;
    if (!error.isEmpty())
        m_error = error;
    m_coverage = coverage;
}
