#pragma once

#include "measure/CGVLElemMgr.h"
#include "measure/CGVLShape.h"
#include "measure/GdiPainter.h"

#include <QImage>
#include <QPainter>

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <vector>

// Helpers shared by the engine tests: stand-ins for element 0, overlay
// buffers read back as pixels, and mouse input as a user gives it.
namespace MeasureTest {

// Stands in for the ruler or the scale (types 9 and 10) as element 0: draws
// one horizontal stroke so tests can see whether it was drawn.
class FakeFixedElement : public CGVLShape
{
public:
    FakeFixedElement(CGVLElemMgr& mgr, int type, QPoint at = QPoint(2, 2))
        : CGVLShape(&mgr.m_unit, &mgr.m_color, mgr.m_hWnd, &mgr)
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
        return StandardLButtonDown(point, tool, -1);
    }
    void ClearCoords() override { LeaveManager(); }
};

// Records what the manager asks of it and answers presses as told.
class SpyShape : public CGVLShape
{
public:
    SpyShape(CGVLElemMgr& mgr, int type)
        : CGVLShape(&mgr.m_unit, &mgr.m_color, mgr.m_hWnd, &mgr)
    {
        m_nType = type;
    }
    int OnLButtonDown(unsigned, const QPoint& point, int tool) override
    {
        ++presses;
        lastPoint = point;
        lastTool = tool;
        return answer;
    }
    void UpdateElem() override { ++updates; }
    int presses = 0;
    int updates = 0;
    int answer = -1;
    int lastTool = -1;
    QPoint lastPoint;
};

template <typename Shape> Shape* Add(CGVLElemMgr& mgr, std::unique_ptr<Shape> shape)
{
    Shape* raw = shape.get();
    mgr.m_arShape.push_back(std::move(shape));
    return raw;
}

inline FakeFixedElement* AddRuler(CGVLElemMgr& mgr, QPoint at = QPoint(2, 2))
{
    auto ruler = std::make_unique<FakeFixedElement>(mgr, 9, at);
    FakeFixedElement* raw = ruler.get();
    mgr.m_arShape.push_back(std::move(ruler));
    return raw;
}

// A bottom-up 24-bit overlay buffer as DrawToBits and DrawToImage fill it.
struct Bits
{
    Bits(int width, int height)
        : width(width)
        , height(height)
        , stride(CGVLElemMgr::BitsStride(width))
        , data(stride * std::size_t(height), 0xAB)
    {
    }
    // Colour of the pixel at (x, y), y counted from the top of the picture.
    QColor At(int x, int y) const
    {
        const uchar* p = &data[std::size_t(height - 1 - y) * stride + std::size_t(x) * 3];
        return QColor(p[2], p[1], p[0]);
    }
    // Pixels of the picture that differ from the key colour.
    int CountNot(const QColor& key) const
    {
        int n = 0;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                n += At(x, y) != key;
        return n;
    }
    // Bounding box (x0, y0, x1, y1 inclusive) of the pixels that differ from key.
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

inline const QColor kKeyBits(1, 1, 1);
inline const QColor kKeyImage(0, 0, 0);
inline const QColor kWhite(255, 255, 255);
inline const QColor kGray(128, 128, 128);

inline Bits DrawBits(CGVLElemMgr& mgr, int width = 320, int height = 240)
{
    Bits bits(width, height);
    mgr.DrawToBits(bits.data.data(), width, height);
    return bits;
}

// A press, the moves and a release at the last point, all with one tool.
inline void Drag(CGVLElemMgr& mgr, int tool, QPoint press, std::initializer_list<QPoint> moves)
{
    mgr.OnLButtonDown(1, press, tool);
    QPoint last = press;
    for (const QPoint& p : moves) {
        mgr.OnMouseMove(1, p, tool);
        last = p;
    }
    mgr.OnLButtonUp(0, last, tool);
}

inline void Click(CGVLElemMgr& mgr, int tool, QPoint at)
{
    mgr.OnLButtonDown(1, at, tool);
    mgr.OnLButtonUp(0, at, tool);
}

// A painter on a QImage in the state the manager's renderers give it.
struct Canvas
{
    explicit Canvas(int width = 120, int height = 80, QColor fill = QColor(1, 1, 1))
        : image(width, height, QImage::Format_BGR888)
    {
        image.fill(fill);
        painter.begin(&image);
        Gdi::ResetDC(painter);
    }
    QImage& Done()
    {
        painter.end();
        return image;
    }
    QImage image;
    QPainter painter;
};

} // namespace MeasureTest
