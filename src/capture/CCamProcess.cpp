#include "capture/CCamProcess.h"

#include "capture/HResult.h"
#include "image/CorrectedRows.h"
#include "image/FlatField.h"
#include "image/FocusPeaking.h"
#include "image/ImageProcess.h"
#include "image/ProcessOperations.h"

#include <cstring>
#include <thread>

template <typename Fn> int CCamProcess::Update(Fn&& fn)
{
    std::lock_guard lock(m_stateMutex);
    fn(m_state);
    return S_OK;
}

CCamProcess::State CCamProcess::Snapshot() const
{
    std::lock_guard lock(m_stateMutex);
    return m_state;
}

int CCamProcess::SetProcessEnable(int on)
{
    return Update([on](State& s) { s.enable = on != 0; });
}

int CCamProcess::SetOperation(ProcessOp op, const ProcessSwitches& values)
{
    return Update([op, &values](State& s) { CopyOperation(op, values, s.switches); });
}

int CCamProcess::SetOverlay(int on, uchar* const* overlayPointer)
{
    if (on && !overlayPointer)
        return E_POINTER;
    Update([on, overlayPointer](State& s) {
        s.overlayOn = on != 0;
        s.overlayPointer = overlayPointer;
    });
    // A frame that took the old pointer finishes before the caller may free
    // what it pointed to.
    std::lock_guard wait(m_frameMutex);
    return S_OK;
}

void CCamProcess::SetOverlaySize(unsigned width, unsigned height)
{
    Update([width, height](State& s) {
        s.overlayWidth = width;
        s.overlayHeight = height;
    });
    std::lock_guard wait(m_frameMutex);
}

int CCamProcess::GetProcessEnable(int* on)
{
    if (!on)
        return E_POINTER;
    *on = Snapshot().enable ? 1 : 0;
    return S_OK;
}

int CCamProcess::GetOperation(ProcessOp op, ProcessSwitches* values)
{
    if (!values)
        return E_POINTER;
    CopyOperation(op, Snapshot().switches, *values);
    return S_OK;
}

int CCamProcess::GetStateA(int* width, int* height)
{
    if (!width || !height)
        return E_POINTER;
    *width = m_lastWidth;
    *height = m_lastHeight;
    return S_OK;
}

int CCamProcess::GetStateB(int* frames)
{
    if (!frames)
        return E_POINTER;
    *frames = int(m_frames.load() & 0x7FFFFFFFu);
    return S_OK;
}

void CCamProcess::WaitOverlayUnused(const uchar* buffer) const
{
    while (buffer && m_overlayInUse.load() == buffer)
        std::this_thread::yield();
}

void CCamProcess::SetFlatField(std::shared_ptr<const FlatField> field)
{
    Update([&field](State& s) { s.flatField = std::move(field); });
}

std::shared_ptr<const FlatField> CCamProcess::GetFlatField() const
{
    return Snapshot().flatField;
}

void CCamProcess::KeepHistograms(bool on)
{
    Update([on](State& s) { s.keepHistogram = on; });
    if (!on) {
        std::lock_guard lock(m_histogramMutex);
        m_hasHistogram = false;
    }
}

void CCamProcess::SetFocusPeaking(bool on, QRgb colour)
{
    Update([on, colour](State& s) {
        s.peaking = on;
        s.peakColour = colour;
    });
    m_sharpness = -1.0;
}

void CCamProcess::SetCoverage(const QImage& coverage, QRgb colour)
{
    auto own = coverage.isNull() ? nullptr : std::make_shared<const QImage>(coverage.copy());
    Update([&own, colour](State& s) {
        s.coverage = std::move(own);
        s.coverageColour = colour;
    });
}

double CCamProcess::LastSharpness() const
{
    return m_sharpness.load();
}

bool CCamProcess::LastHistogram(FrameHistogram* histogram) const
{
    std::lock_guard lock(m_histogramMutex);
    if (!m_hasHistogram || !histogram)
        return false;
    *histogram = m_histogram;
    return true;
}

void CCamProcess::CaptureBlank(unsigned frames)
{
    std::lock_guard lock(m_blankMutex);
    m_blankWanted = frames;
    m_blankCount = 0;
    m_blankSum.clear();
    m_blankPending = frames > 0;
}

QImage CCamProcess::CapturedBlank() const
{
    std::lock_guard lock(m_blankMutex);
    if (m_blankWanted == 0 || m_blankCount < m_blankWanted || m_blankSum.empty())
        return QImage();
    QImage blank(int(m_blankWidth), int(m_blankHeight), QImage::Format_BGR888);
    const std::size_t rowValues = std::size_t(m_blankWidth) * 3;
    for (unsigned y = 0; y < m_blankHeight; ++y) {
        const std::uint32_t* sum = m_blankSum.data() + (m_blankHeight - 1 - y) * rowValues;
        uchar* out = blank.scanLine(int(y));
        for (std::size_t i = 0; i < rowValues; ++i)
            out[i] = uchar((sum[i] + m_blankCount / 2) / m_blankCount);
    }
    return blank;
}

void CCamProcess::AddToBlank(const FrameRows& rows, unsigned width, unsigned height)
{
    std::lock_guard lock(m_blankMutex);
    if (m_blankCount >= m_blankWanted)
        return;
    const std::size_t rowValues = std::size_t(width) * 3;
    if (m_blankSum.empty() || width != m_blankWidth || height != m_blankHeight) {
        m_blankWidth = width;
        m_blankHeight = height;
        m_blankCount = 0;
        m_blankSum.assign(rowValues * height, 0);
    }
    std::vector<uchar> row(DibStride(width));
    for (unsigned y = 0; y < height; ++y) {
        rows.Read(y, row.data());
        std::uint32_t* sum = m_blankSum.data() + y * rowValues;
        for (std::size_t i = 0; i < rowValues; ++i)
            sum[i] += row[i];
    }
    if (++m_blankCount >= m_blankWanted)
        m_blankPending = false;
}

void CCamProcess::KeepCleanFrames(bool on)
{
    Update([on](State& s) { s.keepClean = on; });
    if (!on) {
        std::lock_guard lock(m_cleanMutex);
        m_clean = {};
        m_cleanWidth = m_cleanHeight = 0;
    }
}

QImage CCamProcess::CleanFrame() const
{
    std::lock_guard lock(m_cleanMutex);
    if (m_clean.empty())
        return QImage();
    const QImage bottomUp(m_clean.data(), int(m_cleanWidth), int(m_cleanHeight),
        qsizetype(DibStride(m_cleanWidth)), QImage::Format_BGR888);
    return bottomUp.mirrored(false, true);
}

void CCamProcess::KeepClean(const uchar* rows, std::ptrdiff_t step, unsigned width, unsigned height)
{
    const std::size_t stride = DibStride(width);
    std::lock_guard lock(m_cleanMutex);
    m_clean.resize(stride * height);
    m_cleanWidth = width;
    m_cleanHeight = height;
    for (unsigned y = 0; y < height; ++y)
        std::memcpy(m_clean.data() + y * stride, rows + std::ptrdiff_t(y) * step, stride);
}

void CCamProcess::ProcessFrame(const uchar* src, std::ptrdiff_t srcStep, uchar* dst, std::ptrdiff_t dstStep,
    unsigned width, unsigned height)
{
    ProcessFrame(PaddedRows(src, srcStep, width), dst, dstStep, width, height);
}

void CCamProcess::ProcessFrame(
    const FrameRows& frameRows, uchar* dst, std::ptrdiff_t dstStep, unsigned width, unsigned height)
{
    // The frame lock is taken before the state is read, so that SetOverlay,
    // which waits for it after changing the state, cannot return while a
    // frame still works with the old pointer. The frame is counted before
    // the state is read: one that a reader of the count sees coming after a
    // switch it changed has read the switch as changed.
    std::unique_lock frame(m_frameMutex);
    m_frames.fetch_add(1);
    const State s = Snapshot();
    m_lastWidth = int(width);
    m_lastHeight = int(height);
    if (m_blankPending)
        AddToBlank(frameRows, width, height);

    const FlatField* flat
        = s.enable && s.flatField && s.flatField->Width() == width && s.flatField->Height() == height
        ? s.flatField.get()
        : nullptr;
    FrameHistogram histogram;
    const CorrectedRows corrected(frameRows, width, height, flat, s.keepHistogram ? &histogram : nullptr);
    const FrameRows& rows = flat || s.keepHistogram ? static_cast<const FrameRows&>(corrected) : frameRows;
    // Published when the frame is done, whichever way it went.
    struct Publish
    {
        CCamProcess& self;
        const FrameHistogram* histogram;
        ~Publish()
        {
            if (!histogram)
                return;
            std::lock_guard lock(self.m_histogramMutex);
            self.m_histogram = *histogram;
            self.m_hasHistogram = true;
        }
    } publish { *this, s.keepHistogram ? &histogram : nullptr };

    const bool overlay
        = s.enable && s.overlayOn && s.overlayPointer && s.overlayWidth == width && s.overlayHeight == height;
    if (!overlay)
        frame.unlock();

    const bool peaking = s.enable && s.peaking;
    const bool tint = s.enable && s.coverage;
    // The focus aids, on the frame as processed and before the overlay.
    const auto mark = [&](uchar* rows, std::ptrdiff_t step) {
        if (tint)
            FocusPeaking::Tint(rows, step, width, height, *s.coverage, s.coverageColour);
        if (peaking)
            m_sharpness = FocusPeaking::Mark(rows, step, width, height, s.peakColour);
    };
    if (!overlay) {
        FusedProcess(rows, dst, dstStep, width, height, s.enable ? s.switches : ProcessSwitches(), nullptr);
        if (s.keepClean)
            KeepClean(dst, dstStep, width, height);
        mark(dst, dstStep);
        return;
    }

    // Announce the buffer before reading it, then make sure it is still the
    // published one: a writer that waited on the announcement cannot have
    // started drawing into it.
    auto published = std::atomic_ref<uchar*>(const_cast<uchar*&>(*s.overlayPointer));
    const uchar* buffer = published.load();
    for (;;) {
        m_overlayInUse.store(buffer);
        const uchar* again = published.load();
        if (again == buffer)
            break;
        buffer = again;
    }
    if (peaking || tint) {
        // Marked before the overlay is laid over it, so that the shapes'
        // own lines are not taken for edges in focus.
        const std::size_t stride = DibStride(width);
        m_peaked.resize(stride * height);
        FusedProcess(rows, m_peaked.data(), std::ptrdiff_t(stride), width, height, s.switches, nullptr);
        if (s.keepClean)
            KeepClean(m_peaked.data(), std::ptrdiff_t(stride), width, height);
        mark(m_peaked.data(), std::ptrdiff_t(stride));
        FusedProcess(PaddedRows(m_peaked.data(), std::ptrdiff_t(stride), width), dst, dstStep, width, height,
            ProcessSwitches(), buffer);
    } else if (s.keepClean) {
        // Processed into the kept frame first, then the overlay laid over a
        // copy of it: the same bytes as in one sweep.
        std::lock_guard lock(m_cleanMutex);
        const std::size_t stride = DibStride(width);
        m_clean.resize(stride * height);
        m_cleanWidth = width;
        m_cleanHeight = height;
        FusedProcess(rows, m_clean.data(), std::ptrdiff_t(stride), width, height, s.switches, nullptr);
        FusedProcess(PaddedRows(m_clean.data(), std::ptrdiff_t(stride), width), dst, dstStep, width, height,
            ProcessSwitches(), buffer);
    } else {
        FusedProcess(rows, dst, dstStep, width, height, s.switches, buffer);
    }
    m_overlayInUse.store(nullptr);
}
