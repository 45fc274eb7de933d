#include "measure/EdgeSnap.h"

#include "image/EdgeLocator.h"

std::optional<EdgePoint> SnapToEdge(const QImage& picture, const QPoint& from, const QPointF& direction)
{
    const std::optional<EdgeFix> fix = LocateEdge(picture, QPointF(from), direction, kSnapReach);
    if (!fix)
        return std::nullopt;
    return EdgePoint { fix->position.toPoint(), fix->position, fix->sigma };
}
