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

QRect GdiRect::ToQRect() const
{
    return QRect(left, top, right - left, bottom - top);
}
