#pragma once

#include "CommaLocale.h"
#include "measure/CGVLElemMgr.h"
#include "measure/GdiPainter.h"
#include "measure/WindowCalls.h"

#include <QBuffer>
#include <QColor>
#include <QFile>
#include <QProcess>
#include <QRegion>
#include <QTemporaryDir>
#include <QThread>

#include <clocale>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

// Shared by the engine tests: a stand-in element, overlay buffers read back as
// pixels, and mouse input as a user gives it.
namespace MeasureTest {

inline const QColor kKeyBits(1, 1, 1);
inline const QColor kKeyImage(0, 0, 0);
inline const QColor kGray(128, 128, 128);
inline const QColor kRed(255, 0, 0);
inline const QColor kGreen(0, 255, 0);

// Stands in for element 0 (ruler 9, scale 10) and records the calls the
// manager makes: draws a 10-pixel stroke from its point, answers presses as told.
class TestShape : public CGVLShape
{
public:
    TestShape(CGVLElemMgr& mgr, int type, QPoint at)
        : CGVLShape(&mgr.m_unit, &mgr.m_color, mgr.GetWindow(), &mgr)
    {
        m_nType = type;
        AddOneCoord(at);
    }
    void Draw(QPainter& dc, int hidden, int) override
    {
        if (!hidden)
            Gdi::Line(dc, StrokePen(false), m_arCoord[0], m_arCoord[0] + QPoint(10, 0));
    }
    int OnLButtonDown(unsigned, const QPoint& point, int tool) override
    {
        lastPoint = point;
        lastTool = tool;
        return Log("down", answer);
    }
    int OnLButtonUp(unsigned, const QPoint&, int) override { return Log("up", 0); }
    int OnMouseMove(unsigned, const QPoint&, int) override { return Log("move", 0); }
    int OnRButtonDown(unsigned, const QPoint&, int) override { return Log("right", 0); }
    void UpdateElem() override { ++updates; }

    int Log(const char* what, int result)
    {
        if (log)
            log->push_back(name + ":" + what);
        return result;
    }
    std::vector<std::string>* log = nullptr;
    std::string name;
    int answer = -1;
    int updates = 0;
    int lastTool = -1;
    QPoint lastPoint;
};

inline TestShape* Add(CGVLElemMgr& mgr, int type, QPoint at = QPoint(2, 2))
{
    mgr.m_arShape.push_back(std::make_unique<TestShape>(mgr, type, at));
    return static_cast<TestShape*>(mgr.m_arShape.back().get());
}

// Stands in for the overlay window: the repaints the engine asked of it and
// the calibration news it got, as they arrived.
class WindowSpy : public QObject
{
public:
    QRegion requested;
    int wholeRequests = 0;
    int calibrationEvents = 0;
    // The thread of the last event, to tell sent from queued.
    QThread* deliveredOn = nullptr;

protected:
    bool event(QEvent* event) override
    {
        if (event->type() != kRepaintRequestEvent && event->type() != kCalibrationChangedEvent)
            return QObject::event(event);
        deliveredOn = QThread::currentThread();
        if (event->type() == kCalibrationChangedEvent)
            ++calibrationEvents;
        else if (const auto* repaint = static_cast<const RepaintRequestEvent*>(event); repaint->WholeWindow())
            ++wholeRequests;
        else
            requested += repaint->Rect();
        return true;
    }
};

// A bottom-up 24-bit overlay buffer as DrawToBits and DrawToImage fill it.
struct Bits
{
    Bits(int width, int height)
        : width(width)
        , height(height)
        , stride(DibStride(width))
        , data(stride * std::size_t(height), 0xAB)
    {
    }
    // (x, y) counted from the top of the picture; bytes are B, G, R.
    QColor At(int x, int y) const
    {
        const uchar* p = &data[std::size_t(height - 1 - y) * stride + std::size_t(x) * 3];
        return QColor(p[2], p[1], p[0]);
    }
    // Bounding box of the pixels that are not `key`.
    QRect Extent(const QColor& key) const
    {
        QRect box;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if (At(x, y) != key)
                    box |= QRect(x, y, 1, 1);
        return box;
    }
    int width;
    int height;
    std::size_t stride;
    std::vector<uchar> data;
};

inline Bits DrawBits(CGVLElemMgr& mgr, int width = 320, int height = 240)
{
    Bits bits(width, height);
    mgr.DrawToBits(bits.data.data(), width, height);
    return bits;
}

// A press, the moves, and a release at the last point, all with one tool.
inline void Drag(CGVLElemMgr& mgr, int tool, QPoint press, std::vector<QPoint> moves)
{
    mgr.OnLButtonDown(1, press, tool);
    for (const QPoint& p : moves)
        mgr.OnMouseMove(1, p, tool);
    mgr.OnLButtonUp(0, moves.empty() ? press : moves.back(), tool);
}

inline void Click(CGVLElemMgr& mgr, int tool, QPoint at)
{
    Drag(mgr, tool, at, {});
}

// One click at each point in turn, as angles, three-point circles and
// polygons are placed.
inline void Clicks(CGVLElemMgr& mgr, int tool, std::vector<QPoint> points)
{
    for (const QPoint& p : points)
        Click(mgr, tool, p);
}

inline void RightClick(CGVLElemMgr& mgr, int tool, QPoint at)
{
    mgr.OnRButtonDown(2, at, tool);
}

// The element at `index` as its class; null when it is of another class.
template <typename Shape> Shape* At(CGVLElemMgr& mgr, std::size_t index)
{
    return index < mgr.m_arShape.size() ? dynamic_cast<Shape*>(mgr.m_arShape[index].get()) : nullptr;
}

template <typename Shape> Shape* Last(CGVLElemMgr& mgr)
{
    return mgr.m_arShape.empty() ? nullptr : At<Shape>(mgr, mgr.m_arShape.size() - 1);
}

// Changes part of the calibration or of the appearance and keeps the rest,
// as the dialogs do.
inline void EditUnit(CGVLElemMgr& mgr, const std::function<void(CalibrationRecord&)>& change)
{
    CalibrationRecord unit = mgr.GetUnit();
    change(unit);
    mgr.SetUnit(unit);
}

inline void EditAppearance(CGVLElemMgr& mgr, const std::function<void(CGVLElemMgr::Appearance&)>& change)
{
    CGVLElemMgr::Appearance look = mgr.GetAppearance();
    change(look);
    mgr.SetAppearance(look);
}

// A manager whose element 0 is a stand-in drawn out of the way, at (300, 230).
struct ElementFixture : ::testing::Test
{
    ElementFixture() { Add(mgr, 9, { 300, 230 }); }
    template <typename Shape = CGVLShape> Shape* Elem(std::size_t index) { return At<Shape>(mgr, index); }
    CGVLElemMgr mgr;
};

// A manager with its ruler as element 0, strokes red and handles green.
struct MeasureFixture : ::testing::Test
{
    MeasureFixture()
    {
        mgr.CreateShape(ShapeType::Ruler);
        EditAppearance(mgr, [](auto& a) { a.color = { 1, 2, 3, 1 }; });
    }
    CGVLElemMgr mgr;
};

inline QByteArray ExportCsv(CGVLElemMgr& mgr, bool semicolon = false)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    semicolon ? mgr.WriteCsvSemicolon(buffer) : mgr.WriteCsv(buffer);
    return buffer.data();
}

// A line made by hand, point 0 first.
inline CGVLShape* AddLine(CGVLElemMgr& mgr, QPoint p0, QPoint p1, int type = 2)
{
    CGVLShape* line = mgr.CreateShape(type);
    line->AddOneCoord(p0);
    line->AddOneCoord(p1);
    return line;
}

} // namespace MeasureTest
