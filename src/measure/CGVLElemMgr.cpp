#include "measure/CGVLElemMgr.h"

#include "calibration/MeasureTables.h"
#include "measure/CGVLAnoText.h"
#include "measure/CGVLNo.h"
#include "measure/CGVLPolygon.h"
#include "measure/GdiPainter.h"
#include "measure/WindowCalls.h"
#include "platform/NumberText.h"

#include <QDate>
#include <QIODevice>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

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

void CGVLElemMgr::SetUnit(const CalibrationRecord& unit)
{
    const std::lock_guard lock(m_mutex);
    if (unit != m_unit)
        NoteChange();
    m_unit = unit;
    InvalidateWindow(m_hWnd);
}

CalibrationRecord CGVLElemMgr::GetUnit() const
{
    const std::lock_guard lock(m_mutex);
    return m_unit;
}

void CGVLElemMgr::SetAppearance(const Appearance& appearance)
{
    const std::lock_guard lock(m_mutex);
    if (appearance != GetAppearance())
        NoteChange();
    m_color = appearance.color;
    m_nPrecision = appearance.precision;
    m_nFontSize = appearance.fontSize;
    m_nFontBackground = appearance.fontBackground;
    InvalidateWindow(m_hWnd);
}

CGVLElemMgr::Appearance CGVLElemMgr::GetAppearance() const
{
    const std::lock_guard lock(m_mutex);
    return { m_color, m_nPrecision, m_nFontSize, m_nFontBackground };
}

void CGVLElemMgr::SetCrossLines(bool solid, bool dashed)
{
    const std::lock_guard lock(m_mutex);
    if (solid != (m_bCrossSolid != 0) || dashed != (m_bCrossDashed != 0))
        NoteChange();
    m_bCrossSolid = solid ? 1 : 0;
    m_bCrossDashed = dashed ? 1 : 0;
    InvalidateWindow(m_hWnd);
}

bool CGVLElemMgr::IsCrossSolid() const
{
    const std::lock_guard lock(m_mutex);
    return m_bCrossSolid != 0;
}

bool CGVLElemMgr::IsCrossDashed() const
{
    const std::lock_guard lock(m_mutex);
    return m_bCrossDashed != 0;
}

void CGVLElemMgr::SetRulerShown(bool shown)
{
    const std::lock_guard lock(m_mutex);
    if (shown != (m_bShowRuler != 0))
        NoteChange();
    m_bShowRuler = shown ? 1 : 0;
    InvalidateWindow(m_hWnd);
}

bool CGVLElemMgr::IsRulerShown() const
{
    const std::lock_guard lock(m_mutex);
    return m_bShowRuler != 0;
}

void CGVLElemMgr::SetHidden(bool hidden)
{
    const std::lock_guard lock(m_mutex);
    if (hidden != (m_bHide != 0))
        NoteChange();
    m_bHide = hidden ? 1 : 0;
    InvalidateWindow(m_hWnd);
}

void CGVLElemMgr::SetWindow(QObject* window, TextInput textInput)
{
    const std::lock_guard lock(m_mutex);
    if (window != m_hWnd)
        NoteChange();
    m_hWnd = window;
    m_fnTextInput = std::move(textInput);
}

QObject* CGVLElemMgr::GetWindow() const
{
    const std::lock_guard lock(m_mutex);
    return m_hWnd;
}

CGVLElemMgr::TextInput CGVLElemMgr::SetTextInput(TextInput textInput)
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_fnTextInput, std::move(textInput));
}

void CGVLElemMgr::SetSnapSource(std::function<QImage()> source)
{
    const std::lock_guard lock(m_mutex);
    m_fnSnapPicture = std::move(source);
}

QImage CGVLElemMgr::SnapPicture() const
{
    std::function<QImage()> source;
    {
        const std::lock_guard lock(m_mutex);
        source = m_fnSnapPicture;
    }
    // Asked with the lock released where the caller holds none: finding the
    // picture may take a while.
    return source ? source() : QImage();
}

std::uint64_t CGVLElemMgr::ChangeCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_nChanges;
}

void CGVLElemMgr::NoteChange()
{
    const std::lock_guard lock(m_mutex);
    m_nEverythingAt = ++m_nChanges;
}

void CGVLElemMgr::NoteShapeChange(const CGVLShape& shape)
{
    const std::lock_guard lock(m_mutex);
    shape.m_nChangedAt = ++m_nChanges;
}

void CGVLElemMgr::SetCount(int count)
{
    const std::lock_guard lock(m_mutex);
    m_nCount = count;
}

int CGVLElemMgr::GetCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_nCount;
}

bool CGVLElemMgr::IsMouseDown() const
{
    const std::lock_guard lock(m_mutex);
    return m_bMouseDown != 0;
}

int CGVLElemMgr::TypeForTool(int tool)
{
    const ShapeKind* kind = ShapeKindForTool(tool);
    return kind ? int(kind->type) : 0;
}

CGVLShape* CGVLElemMgr::CreateShape(int type)
{
    const Call call(*this);
    return Append(type);
}

CGVLShape* CGVLElemMgr::CreateShape(ShapeType type)
{
    return CreateShape(int(type));
}

void CGVLElemMgr::AppendShapes(std::vector<std::unique_ptr<CGVLShape>> shapes)
{
    const Call call(*this);
    NoteChange();
    m_arShape.reserve(m_arShape.size() + shapes.size());
    for (std::unique_ptr<CGVLShape>& shape : shapes) {
        if (!shape)
            continue;
        if (auto* marker = dynamic_cast<CGVLNo*>(shape.get()))
            marker->SetNumber(++m_nCount);
        shape->SetRefPoint(m_ptOrigin);
        m_arShape.push_back(std::move(shape));
    }
    InvalidateWindow(m_hWnd);
}

CGVLShape* CGVLElemMgr::Append(int type)
{
    const ShapeKind* kind = FindShapeKind(type);
    if (!kind)
        return nullptr;
    m_arShape.push_back(kind->factory.make(*this));
    NoteShapeChange(*m_arShape.back());
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

std::vector<CGVLShape*> CGVLElemMgr::TopDown() const
{
    std::vector<CGVLShape*> shapes;
    shapes.reserve(m_arShape.size());
    for (auto it = m_arShape.rbegin(); it != m_arShape.rend(); ++it)
        shapes.push_back(it->get());
    return shapes;
}

bool CGVLElemMgr::HasLeft(const CGVLShape* shape) const
{
    return std::any_of(
        m_arLeft.begin(), m_arLeft.end(), [shape](const auto& left) { return left.get() == shape; });
}

// The text dialog waits for the user as long as they like, and the live
// overlay worker must go on drawing meanwhile, so the dialog runs with the
// lock released: the press is routed under the lock, the text is typed into a
// copy, and the copy goes into the element under the lock again, if the
// element is still there (the dialog's event loop may have run anything).
// Callers must not hold Lock() themselves around this call.
void CGVLElemMgr::OnLButtonDown(unsigned flags, const QPoint& point, int tool)
{
    CGVLAnoText* text = nullptr;
    TextInput ask;
    QObject* parent = nullptr;
    QStringList lines;
    {
        const Call call(*this);
        text = Press(flags, point, tool);
        if (!text)
            return;
        m_arAsking.push_back(text);
        ask = m_fnTextInput;
        parent = m_hWnd;
        lines = text->m_arText;
    }
    const bool ok = ask && ask(parent, lines);

    const Call call(*this);
    const auto asking = std::find(m_arAsking.begin(), m_arAsking.end(), text);
    if (asking == m_arAsking.end())
        return; // deleted while the dialog was open
    m_arAsking.erase(asking);
    if (ok) {
        text->m_arText = lines;
        NoteShapeChange(*text);
        text->UpdateElem();
        // Until its first draw the element does not know its font's size, so
        // its own repaint area falls short of the text.
        InvalidateWindow(m_hWnd);
    } else {
        DeleteShape(text);
    }
}

CGVLAnoText* CGVLElemMgr::Press(unsigned flags, const QPoint& point, int tool)
{
    for (const auto& shape : m_arShape) {
        if (shape->m_bSelected)
            NoteShapeChange(*shape);
        shape->SetSelected(false);
    }

    const ShapeKind* kind = ShapeKindForTool(tool);
    CGVLShape* target = nullptr;
    if (kind) {
        switch (kind->press) {
        case PressRoute::New:
            target = Append(int(kind->type));
            break;
        case PressRoute::ContinuePlacing:
            // Safeguard: a second or third click continues the element still
            // being placed (down), never an older one left half-placed.
            for (const auto& shape : m_arShape) {
                if (shape->m_bDown && shape->GetType() == int(kind->type)) {
                    shape->OnLButtonDown(flags, point, tool);
                    m_bMouseDown = 1;
                    return nullptr;
                }
            }
            target = Append(int(kind->type));
            break;
        case PressRoute::ContinueOpenPolygon: {
            // Safeguard: only an open polygon at the end of the list takes the
            // next vertex; one left open further up keeps what it has.
            const auto* last = dynamic_cast<const CGVLPolygon*>(LastShape());
            target = last && !last->IsClosed() ? LastShape() : Append(int(kind->type));
            break;
        }
        }
    } else {
        switch (tool) {
        case CGVLShape::kToolPressLast:
            target = LastShape();
            break;
        case CGVLShape::kToolDeleteAll:
        case CGVLShape::kToolIgnore:
            return nullptr;
        default:
            // Topmost first; an element that deletes itself answers -1, so the
            // press goes on to the elements below it.
            for (CGVLShape* shape : TopDown()) {
                if (HasLeft(shape))
                    continue;
                if (shape->OnLButtonDown(flags, point, tool) != -1)
                    break;
            }
            m_bMouseDown = 1;
            return nullptr;
        }
    }
    if (!target)
        return nullptr;
    target->OnLButtonDown(flags, point, tool);
    if (HasLeft(target))
        return nullptr;
    target->SetRefPoint(m_ptOrigin);
    m_bMouseDown = 1;
    if (kind && kind->type == ShapeType::Counting) {
        if (auto* marker = dynamic_cast<CGVLNo*>(target))
            marker->SetNumber(++m_nCount);
    }
    return kind && kind->type == ShapeType::Text ? dynamic_cast<CGVLAnoText*>(target) : nullptr;
}

void CGVLElemMgr::OnLButtonUp(unsigned flags, const QPoint& point, int tool)
{
    const Call call(*this);
    for (CGVLShape* shape : TopDown()) {
        if (!HasLeft(shape))
            shape->OnLButtonUp(flags, point, tool);
    }
    m_bMouseDown = 0;
}

void CGVLElemMgr::OnMouseMove(unsigned flags, const QPoint& point, int tool)
{
    const Call call(*this);
    for (CGVLShape* shape : TopDown()) {
        if (!HasLeft(shape))
            shape->OnMouseMove(flags, point, tool);
    }
}

void CGVLElemMgr::OnRButtonDown(unsigned flags, const QPoint& point, int tool)
{
    const Call call(*this);
    for (CGVLShape* shape : TopDown()) {
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
    const ShapeKind* kind = FindShapeKind(type);
    if (kind && kind->permanent)
        return type - int(ShapeType::Ruler);
    if (kind && kind->type == ShapeType::Counting)
        --m_nCount;
    const int index = int(it - m_arShape.begin());
    NoteChange();
    std::erase(m_arAsking, shape);
    m_arLeft.push_back(std::move(*it));
    m_arShape.erase(it);
    return index;
}

void CGVLElemMgr::DeleteAll()
{
    const Call call(*this);
    if (m_arShape.size() > 1)
        NoteChange();
    while (m_arShape.size() > 1) {
        std::erase(m_arAsking, m_arShape.back().get());
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
    NoteChange();
    for (CGVLShape* shape : Snapshot()) {
        if (HasLeft(shape))
            continue;
        shape->SetRefPoint(point);
        shape->UpdateElem();
    }
}

std::vector<std::unique_ptr<CGVLShape>> CGVLElemMgr::CopyShapes() const
{
    const std::lock_guard lock(m_mutex);
    std::vector<std::unique_ptr<CGVLShape>> copies;
    copies.reserve(m_arShape.size());
    for (const auto& shape : m_arShape) {
        if (auto copy = CopyShape(*shape))
            copies.push_back(std::move(copy));
    }
    return copies;
}

void CGVLElemMgr::ReplaceShapes(const std::vector<std::unique_ptr<CGVLShape>>& shapes)
{
    std::vector<const CGVLShape*> pointers;
    pointers.reserve(shapes.size());
    for (const auto& shape : shapes)
        pointers.push_back(shape.get());
    const Call call(*this);
    ReplaceShapes(0, m_arShape.size(), pointers);
}

void CGVLElemMgr::ReplaceShapes(
    std::size_t first, std::size_t count, const std::vector<const CGVLShape*>& shapes)
{
    const Call call(*this);
    NoteChange();
    m_arAsking.clear();
    first = std::min(first, m_arShape.size());
    count = std::min(count, m_arShape.size() - first);
    const auto from = m_arShape.begin() + std::ptrdiff_t(first);
    for (auto it = from; it != from + std::ptrdiff_t(count); ++it)
        m_arLeft.push_back(std::move(*it));
    m_arShape.erase(from, from + std::ptrdiff_t(count));
    std::vector<std::unique_ptr<CGVLShape>> copies;
    copies.reserve(shapes.size());
    for (const CGVLShape* shape : shapes) {
        if (auto copy = shape ? CopyShape(*shape) : nullptr) {
            // The window and its scroll origin may have changed since the
            // state was kept.
            copy->m_hWnd = m_hWnd;
            copy->SetRefPoint(m_ptOrigin);
            copies.push_back(std::move(copy));
        }
    }
    std::vector<CGVLShape*> added;
    for (const auto& copy : copies)
        added.push_back(copy.get());
    m_arShape.insert(m_arShape.begin() + std::ptrdiff_t(first), std::make_move_iterator(copies.begin()),
        std::make_move_iterator(copies.end()));
    // The elements around them are as they were; the window repaints whole.
    for (CGVLShape* shape : added) {
        if (!HasLeft(shape))
            shape->UpdateElem();
    }
    InvalidateWindow(m_hWnd);
}

void CGVLElemMgr::DrawAll(QPainter& dc, int width, int height)
{
    const Call call(*this);
    DrawRange(dc, 0, m_arShape.size());
    DrawCrossLines(dc, width, height);
}

void CGVLElemMgr::DrawRange(QPainter& dc, std::size_t from, std::size_t to)
{
    if (from == 0 && m_bShowRuler && !m_arShape.empty())
        m_arShape.front()->Draw(dc, m_bHide, 0);
    // A repaint of part of the window passes by the elements that cannot
    // reach it: thousands of them cost little when one changes.
    const QRect area = dc.hasClipping() ? dc.clipBoundingRect().toAlignedRect() : QRect();
    for (std::size_t i = std::max<std::size_t>(from, 1); i < to; ++i) {
        CGVLShape& shape = *m_arShape[i];
        if (!area.isNull()) {
            const QRect bounds = shape.DrawnBounds();
            if (!bounds.isNull() && !bounds.intersects(area))
                continue;
        }
        shape.Draw(dc, m_bHide, 0);
    }
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

template <typename Draw> void CGVLElemMgr::Paint(uchar* buffer, int width, int height, Draw&& draw)
{
    QImage image(buffer, width, height, qsizetype(DibStride(width)), QImage::Format_BGR888);
    QPainter dc(&image);
    Gdi::ResetDC(dc);
    draw(dc);
}

template <typename Draw>
void CGVLElemMgr::RenderBits(uchar* buffer, int width, int height, uchar fill, Draw&& draw)
{
    std::memset(buffer, fill, DibStride(width) * std::size_t(height));
    // Drawn top-down straight into the caller's memory, then the rows are put
    // bottom-up.
    Paint(buffer, width, height, std::forward<Draw>(draw));
    FlipVertical(buffer, unsigned(width), unsigned(height));
}

void CGVLElemMgr::DrawToBits(uchar* buffer, int width, int height)
{
    if (!buffer || width <= 0 || height <= 0)
        return;
    const Call call(*this);
    RenderBits(buffer, width, height, 1, [&](QPainter& dc) { DrawAll(dc, width, height); });
}

bool CGVLElemMgr::DrawToBitsIfChanged(
    uchar* buffer, int width, int height, std::optional<std::uint64_t>& drawnAt)
{
    const Call call(*this);
    if (drawnAt == m_nChanges)
        return false;
    if (buffer && width > 0 && height > 0 && m_arShape.size() >= kLayerFrom) {
        DrawLayered(buffer, width, height);
    } else {
        m_layer.Drop();
        DrawToBits(buffer, width, height);
    }
    drawnAt = m_nChanges;
    return true;
}

void CGVLElemMgr::DrawLayered(uchar* buffer, int width, int height)
{
    std::size_t shown = m_layer.Valid(m_arShape, width, height, m_nEverythingAt);
    // The last element is the one a gesture is most likely still changing:
    // it stays out of the layer.
    const std::size_t settled = CShapeLayer::RestingUpTo(m_arShape, shown, m_arShape.size() - 1);
    if (shown < settled) {
        Paint(m_layer.Grow(shown, width, height, 1), width, height, [&](QPainter& dc) {
            if (shown > 0)
                m_layer.ResumePainter(dc);
            DrawRange(dc, shown, settled);
            m_layer.KeepPainter(dc);
        });
        m_layer.Shown(m_arShape, settled, m_nChanges);
        shown = settled;
    }
    if (shown == 0) { // nothing at rest to keep
        DrawToBits(buffer, width, height);
        return;
    }
    std::memcpy(buffer, m_layer.Pixels().data(), m_layer.Pixels().size());
    Paint(buffer, width, height, [&](QPainter& dc) {
        m_layer.ResumePainter(dc);
        DrawRange(dc, shown, m_arShape.size());
        DrawCrossLines(dc, width, height);
    });
    FlipVertical(buffer, unsigned(width), unsigned(height));
}

void CGVLElemMgr::DrawToImage(uchar* buffer, int width, int height, bool elements, bool ruler, int, bool date,
    bool text, const QString& title)
{
    if (!buffer || width <= 0 || height <= 0)
        return;
    const Call call(*this);
    RenderBits(buffer, width, height, 0, [&](QPainter& dc) {
        CGVLShape::SetLabelBackground(dc, m_nFontBackground);
        if (ruler && !m_arShape.empty())
            m_arShape.front()->Draw(dc, m_bHide, 0);
        if (elements) {
            for (std::size_t i = 1; i < m_arShape.size(); ++i)
                m_arShape[i]->Draw(dc, m_bHide, 0);
        }
        DrawCrossLines(dc, width, height);

        dc.setFont(Gdi::MakeFont(12, 7, 100));
        CGVLShape::SetLabelBackground(dc, m_nFontBackground);
        const QColor textColor = MeasureTables::PaletteColor(m_color.m_ctText);
        const int x = width - 100;
        if (date) {
            const QDate today = QDate::currentDate();
            const QString stamp = today.isValid()
                ? NumberText::FormatC("%d-%d-%d", today.year(), today.month(), today.day())
                : QStringLiteral("0-0-0");
            Gdi::TextOut(dc, x, height - 40, stamp, textColor);
        }
        if (text)
            Gdi::TextOut(dc, x, height - 60, title, textColor);
    });
}

namespace {

// Rows are made in a buffer of 256 bytes with its terminating zero; a longer
// row (an absurd calibration) is cut there.
constexpr qsizetype kCsvLineMax = 255;

} // namespace

QByteArray CGVLElemMgr::CsvBytes() const
{
    QByteArray out;
    // Safeguard: the ruler alone, as "Delete all" leaves it, writes nothing,
    // not even the header.
    if (m_arShape.size() < 2)
        return out;
    out += "No.,Type,Result,Unit\n";
    // "%.*f" with the precision prints exactly what the "%.1f" to "%.5f"
    // forms print; outside 1..5 there is no form and the row stays empty.
    const int precision = m_nPrecision;
    const bool formatted = precision >= 1 && precision <= 5;
    const char* unit = MeasureTables::SpacedUnitText(m_unit.m_rtUnit);
    auto add = [&](const QString& row) {
        QByteArray bytes = row.toUtf8();
        if (bytes.size() > kCsvLineMax)
            bytes.truncate(kCsvLineMax);
        out += bytes;
    };
    using NumberText::FormatC;
    int number = 1;
    for (std::size_t i = 1; i < m_arShape.size(); ++i) {
        const CGVLShape& shape = *m_arShape[i];
        const ShapeKind* kind = FindShapeKind(shape.GetType());
        if (!kind || kind->csv.empty())
            continue;
        if (formatted) {
            for (const CsvRow& row : kind->csv) {
                const double value = row.value(shape);
                switch (row.unit) {
                case CsvRow::Unit::Length:
                    add(FormatC("%d,%s,%.*f,%s\n", number, row.label, precision, value, unit));
                    break;
                case CsvRow::Unit::Area:
                    add(FormatC("%d,%s,%.*f,%s2\n", number, row.label, precision, value, unit));
                    break;
                case CsvRow::Unit::Degree:
                    add(FormatC("%d,%s,%.*f,degree\n", number, row.label, precision, value));
                    break;
                }
            }
        }
        ++number;
    }
    return out;
}

void CGVLElemMgr::WriteCsvWith(QIODevice& file, char separator)
{
    QByteArray bytes;
    {
        const Call call(*this);
        bytes = CsvBytes();
    }
    // No text or number of a row holds a comma, so the semicolon variant is
    // the comma variant with every separator swapped.
    if (separator != ',')
        bytes.replace(',', separator);
    // Written with the lock released: a slow disk must not hold up the
    // overlay worker.
    if (!bytes.isEmpty())
        file.write(bytes);
}

void CGVLElemMgr::WriteCsv(QIODevice& file)
{
    WriteCsvWith(file, ',');
}

void CGVLElemMgr::WriteCsvSemicolon(QIODevice& file)
{
    WriteCsvWith(file, ';');
}
