#include "measure/GdiRect.h"

#include <algorithm>

bool GdiRect::Contains(const QPoint& point) const
{
    return point.x() >= left && point.x() < right && point.y() >= top && point.y() < bottom;
}

GdiRect GdiRect::Normalized() const
{
    return { std::min(left, right), std::min(top, bottom), std::max(left, right), std::max(top, bottom) };
}

GdiRect GdiRect::Around(std::span<const QPoint> points)
{
    if (points.empty())
        return {};
    GdiRect box { points[0].x(), points[0].y(), points[0].x(), points[0].y() };
    for (const QPoint& p : points)
        box = box.With(p);
    return box;
}

GdiRect GdiRect::With(const QPoint& point) const
{
    return { std::min(left, point.x()), std::min(top, point.y()), std::max(right, point.x()),
        std::max(bottom, point.y()) };
}

QRect GdiRect::ToQRect() const
{
    return QRect(left, top, right - left, bottom - top);
}
