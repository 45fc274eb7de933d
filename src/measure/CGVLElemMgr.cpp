#include "measure/CGVLElemMgr.h"

#include "calibration/MeasureTables.h"
#include "measure/CGVLAnoArrow.h"
#include "measure/CGVLLine.h"
#include "measure/CGVLNo.h"
#include "measure/CGVLPoint.h"
#include "measure/CGVLRuler.h"
#include "measure/CGVLScale.h"
#include "measure/GdiPainter.h"
#include "measure/WindowCalls.h"
#include "platform/DebugLog.h"

#include <QDate>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cstring>
#include <ranges>

namespace {

// The element classes by type id. A new element class joins here.
std::unique_ptr<CGVLShape> NewShape(
    int type, CalibrationRecord* unit, ColorRecord* color, QWidget* wnd, CGVLElemMgr* mgr)
{
    switch (type) {
    case 1:
        return std::make_unique<CGVLPoint>(unit, color, wnd, mgr);
    case 2:
        return std::make_unique<CGVLLine>(unit, color, wnd, mgr);
    case 9:
        return std::make_unique<CGVLRuler>(unit, color, wnd, mgr);
    case 10:
        return std::make_unique<CGVLScale>(unit, color, wnd, mgr);
    case 11:
        return std::make_unique<CGVLNo>(unit, color, wnd, mgr);
    case 12:
        return std::make_unique<CGVLAnoArrow>(unit, color, wnd, mgr);
    default:
        return nullptr;
    }
}

} // namespace

// Every public operation runs inside one: it holds the lock, and the
// outermost one destroys the elements that left the list meanwhile.
class CGVLElemMgr::Call
{
public:
    explicit Call(CGVLElemMgr& mgr)
        : m_lock(mgr.m_mutex)
        , m_mgr(mgr)
    {
        ++m_mgr.m_nCallDepth;
    }
    ~Call()
    {
        if (--m_mgr.m_nCallDepth == 0)
            m_mgr.m_arLeft.clear();
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

private:
    std::lock_guard<std::recursive_mutex> m_lock;
    CGVLElemMgr& m_mgr;
};

CGVLElemMgr::CGVLElemMgr() = default;

CGVLElemMgr::~CGVLElemMgr()
{
    const std::lock_guard lock(m_mutex);
    m_arShape.clear();
    m_arLeft.clear();
}

std::unique_lock<std::recursive_mutex> CGVLElemMgr::Lock() const
{
    return std::unique_lock(m_mutex);
}

std::size_t CGVLElemMgr::BitsStride(int width)
{
    return width <= 0 ? 0 : ((std::size_t(width) * 24 + 31) / 32) * 4;
}

int CGVLElemMgr::TypeForTool(int tool)
{
    switch (tool) {
    case 1:
    case 2:
    case 3:
    case 4:
    case 5:
    case 6:
    case 7:
        return tool;
    case kToolCounting:
        return 11;
    case kToolArrow:
        return 12;
    case kToolText:
        return 14;
    default:
        return 0;
    }
}

CGVLShape* CGVLElemMgr::CreateShape(int type)
{
    const Call call(*this);
    return Append(type);
}

CGVLShape* CGVLElemMgr::Append(int type)
{
    std::unique_ptr<CGVLShape> shape = NewShape(type, &m_unit, &m_color, m_hWnd, this);
    if (!shape)
        return nullptr;
    m_arShape.push_back(std::move(shape));
    return m_arShape.back().get();
}

CGVLShape* CGVLElemMgr::LastShape() const
{
    return m_arShape.empty() ? nullptr : m_arShape.back().get();
}

std::vector<CGVLShape*> CGVLElemMgr::Snapshot() const
{
    std::vector<CGVLShape*> shapes;
    shapes.reserve(m_arShape.size());
    for (const auto& shape : m_arShape)
        shapes.push_back(shape.get());
    return shapes;
}

bool CGVLElemMgr::HasLeft(const CGVLShape* shape) const
{
    return std::any_of(
        m_arLeft.begin(), m_arLeft.end(), [shape](const auto& left) { return left.get() == shape; });
}

void CGVLElemMgr::OnLButtonDown(unsigned flags, const QPoint& point, int tool)
{
    const Call call(*this);
    for (const auto& shape : m_arShape)
        shape->SetSelected(false);

    CGVLShape* target = nullptr;
    switch (tool) {
    case 1:
    case 2:
    case 4:
    case 6:
    case kToolCounting:
    case kToolArrow:
    case kToolText:
        target = Append(TypeForTool(tool));
        break;
    case 3:
    case 7:
        // A second or third click continues the element still being placed.
        for (const auto& shape : m_arShape) {
            if (shape->m_bDown && shape->GetType() == tool) {
                shape->OnLButtonDown(flags, point, tool);
                m_bMouseDown = 1;
                return;
            }
        }
        target = Append(tool);
        break;
    case 5:
        target = Append(5);
        break;
    case kToolPressLast:
        target = LastShape();
        break;
    case kToolDeleteAll:
    case kToolIgnore:
        return;
    default:
        // Topmost first; an element that deletes itself answers -1, so the
        // press goes on to the elements below it.
        for (CGVLShape* shape : Snapshot() | std::views::reverse) {
            if (HasLeft(shape))
                continue;
            if (shape->OnLButtonDown(flags, point, tool) != -1)
                break;
        }
        m_bMouseDown = 1;
        return;
    }
    if (!target)
        return;
    target->OnLButtonDown(flags, point, tool);
    if (HasLeft(target))
        return;
    target->SetRefPoint(m_ptOrigin);
    m_bMouseDown = 1;
    if (tool == kToolCounting) {
        if (auto* marker = dynamic_cast<CGVLNo*>(target))
            marker->SetNumber(++m_nCount);
    }
}

void CGVLElemMgr::OnLButtonUp(unsigned flags, const QPoint& point, int tool)
{
    const Call call(*this);
    for (CGVLShape* shape : Snapshot() | std::views::reverse) {
        if (!HasLeft(shape))
            shape->OnLButtonUp(flags, point, tool);
    }
    m_bMouseDown = 0;
}

void CGVLElemMgr::OnMouseMove(unsigned flags, const QPoint& point, int tool)
{
    const Call call(*this);
    for (CGVLShape* shape : Snapshot() | std::views::reverse) {
        if (!HasLeft(shape))
            shape->OnMouseMove(flags, point, tool);
    }
}

void CGVLElemMgr::OnRButtonDown(unsigned flags, const QPoint& point, int tool)
{
    const Call call(*this);
    for (CGVLShape* shape : Snapshot() | std::views::reverse) {
        if (!HasLeft(shape))
            shape->OnRButtonDown(flags, point, tool);
    }
    m_bMouseDown = 0;
}

int CGVLElemMgr::FindById(std::uint32_t id) const
{
    const std::lock_guard lock(m_mutex);
    for (std::size_t i = 0; i < m_arShape.size(); ++i) {
        if (m_arShape[i]->GetId() == id)
            return int(i);
    }
    return -1;
}

int CGVLElemMgr::DeleteById(unsigned id)
{
    const Call call(*this);
    const int index = FindById(id);
    if (index < 0)
        return -1;
    return DeleteShape(m_arShape[std::size_t(index)].get());
}

int CGVLElemMgr::DeleteShape(CGVLShape* shape)
{
    const Call call(*this);
    const auto it = std::find_if(
        m_arShape.begin(), m_arShape.end(), [shape](const auto& s) { return s.get() == shape; });
    if (it == m_arShape.end())
        return -1;
    const int type = shape->GetType();
    if (type == 9 || type == 10)
        return type - 9;
    if (type == 11)
        --m_nCount;
    const int index = int(it - m_arShape.begin());
    m_arLeft.push_back(std::move(*it));
    m_arShape.erase(it);
    return index;
}

void CGVLElemMgr::DeleteAll()
{
    const Call call(*this);
    while (m_arShape.size() > 1) {
        m_arLeft.push_back(std::move(m_arShape.back()));
        m_arShape.pop_back();
    }
    InvalidateWindow(m_hWnd);
    m_nCount = 0;
}

void CGVLElemMgr::SetOrigin(const QPoint& point)
{
    const Call call(*this);
    if (point == m_ptOrigin)
        return;
    m_ptOrigin = point;
    for (CGVLShape* shape : Snapshot()) {
        if (HasLeft(shape))
            continue;
        shape->SetRefPoint(point);
        shape->UpdateElem();
    }
}

void CGVLElemMgr::DrawAll(QPainter& dc, int width, int height)
{
    const Call call(*this);
    if (m_bShowRuler && !m_arShape.empty())
        m_arShape.front()->Draw(dc, m_bHide, 0);
    for (std::size_t i = 1; i < m_arShape.size(); ++i)
        m_arShape[i]->Draw(dc, m_bHide, 0);
    DrawCrossLines(dc, width, height);
}

void CGVLElemMgr::DrawCrossLines(QPainter& dc, int width, int height)
{
    if (!m_bCrossSolid && !m_bCrossDashed)
        return;
    Gdi::SetBkColor(dc, MeasureTables::kLabelGray);
    const Gdi::Pen pen { MeasureTables::PaletteColor(m_color.m_ctRuler), 1,
        m_bCrossSolid ? Gdi::PenStyle::Solid : Gdi::PenStyle::Dash };
    const int cx = width / 2;
    const int cy = height / 2;
    Gdi::Line(dc, pen, QPoint(cx, cy), QPoint(cx + 1, cy));
    // The arms leave four pixels free around the centre dot.
    Gdi::Line(dc, pen, QPoint(cx, cy - 4), QPoint(cx, 0));
    Gdi::Line(dc, pen, QPoint(cx, cy + 4), QPoint(cx, height));
    Gdi::Line(dc, pen, QPoint(cx - 4, cy), QPoint(0, cy));
    Gdi::Line(dc, pen, QPoint(cx + 4, cy), QPoint(width, cy));
}

template <typename Draw>
void CGVLElemMgr::RenderBits(uchar* buffer, int width, int height, uchar fill, Draw&& draw)
{
    const std::size_t stride = BitsStride(width);
    std::memset(buffer, fill, stride * std::size_t(height));
    {
        // Drawn top-down straight into the caller's memory, then the rows are
        // put bottom-up.
        QImage image(buffer, width, height, qsizetype(stride), QImage::Format_BGR888);
        QPainter dc(&image);
        Gdi::ResetDC(dc);
        draw(dc);
    }
    std::vector<uchar> row(stride);
    for (int top = 0, bottom = height - 1; top < bottom; ++top, --bottom) {
        uchar* a = buffer + std::size_t(top) * stride;
        uchar* b = buffer + std::size_t(bottom) * stride;
        std::memcpy(row.data(), a, stride);
        std::memcpy(a, b, stride);
        std::memcpy(b, row.data(), stride);
    }
}

void CGVLElemMgr::DrawToBits(uchar* buffer, int width, int height)
{
    if (!buffer || width <= 0 || height <= 0)
        return;
    const Call call(*this);
    qCDebug(lcMeasure, "MakeElemOverlay");
    RenderBits(buffer, width, height, 1, [&](QPainter& dc) { DrawAll(dc, width, height); });
}

void CGVLElemMgr::DrawToImage(uchar* buffer, int width, int height, bool elements, bool ruler, int, bool date,
    bool text, const QString& title)
{
    if (!buffer || width <= 0 || height <= 0)
        return;
    const Call call(*this);
    RenderBits(buffer, width, height, 0, [&](QPainter& dc) {
        auto background = [&] {
            if (m_nFontBackground == 1) {
                Gdi::SetBkMode(dc, false);
            } else {
                Gdi::SetBkMode(dc, true);
                Gdi::SetBkColor(dc, MeasureTables::kLabelGray);
            }
        };
        background();
        if (ruler && !m_arShape.empty())
            m_arShape.front()->Draw(dc, m_bHide, 0);
        if (elements) {
            for (std::size_t i = 1; i < m_arShape.size(); ++i)
                m_arShape[i]->Draw(dc, m_bHide, 0);
        }
        DrawCrossLines(dc, width, height);

        dc.setFont(Gdi::MakeFont(12, 7, 100));
        background();
        const QColor textColor = MeasureTables::PaletteColor(m_color.m_ctText);
        const int x = width - 100;
        if (date) {
            const QDate today = QDate::currentDate();
            const QString stamp = today.isValid()
                ? MeasureTables::FormatC("%d-%d-%d", today.year(), today.month(), today.day())
                : QStringLiteral("0-0-0");
            Gdi::TextOut(dc, x, height - 40, stamp, textColor);
        }
        if (text)
            Gdi::TextOut(dc, x, height - 60, title, textColor);
    });
}
