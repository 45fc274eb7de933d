#include "measure/CShapeLayer.h"

#include "image/ImageProcess.h"
#include "measure/CGVLShape.h"

#include <algorithm>
#include <cstring>

namespace {

bool AtRest(const CGVLShape& shape)
{
    return !shape.m_bDown && !shape.m_bSelected && shape.m_nHit == -1;
}

} // namespace

std::size_t CShapeLayer::RestingUpTo(
    const std::vector<std::unique_ptr<CGVLShape>>& shapes, std::size_t from, std::size_t to)
{
    while (from < to && AtRest(*shapes[from]))
        ++from;
    return from;
}

std::size_t CShapeLayer::Valid(const std::vector<std::unique_ptr<CGVLShape>>& shapes, int width, int height,
    std::uint64_t everythingAt) const
{
    if (m_arShown.empty() || width != m_nWidth || height != m_nHeight || everythingAt > m_nDrawnAt
        || m_arShown.size() > shapes.size())
        return 0;
    for (std::size_t i = 0; i < m_arShown.size(); ++i)
        if (shapes[i].get() != m_arShown[i] || shapes[i]->m_nChangedAt > m_nDrawnAt || !AtRest(*shapes[i]))
            return 0;
    return m_arShown.size();
}

uchar* CShapeLayer::Grow(std::size_t held, int width, int height, uchar fill)
{
    if (held == 0) {
        m_arShown.clear();
        m_pixels.assign(DibStride(width) * std::size_t(height), fill);
        m_nWidth = width;
        m_nHeight = height;
    }
    return m_pixels.data();
}

void CShapeLayer::Shown(
    const std::vector<std::unique_ptr<CGVLShape>>& shapes, std::size_t upTo, std::uint64_t changes)
{
    upTo = std::min(upTo, shapes.size());
    m_arShown.resize(upTo);
    for (std::size_t i = 0; i < upTo; ++i)
        m_arShown[i] = shapes[i].get();
    m_nDrawnAt = changes;
}

void CShapeLayer::KeepPainter(const QPainter& dc)
{
    m_painter = { dc.pen(), dc.brush(), dc.font(), dc.background(), dc.backgroundMode(), dc.compositionMode(),
        dc.renderHints(), dc.worldTransform(), dc.brushOrigin(), dc.opacity() };
}

void CShapeLayer::ResumePainter(QPainter& dc) const
{
    dc.setPen(m_painter.pen);
    dc.setBrush(m_painter.brush);
    dc.setFont(m_painter.font);
    dc.setBackground(m_painter.background);
    dc.setBackgroundMode(m_painter.backgroundMode);
    dc.setCompositionMode(m_painter.composition);
    dc.setRenderHints(QPainter::RenderHints::fromInt(~0), false);
    dc.setRenderHints(m_painter.hints, true);
    dc.setWorldTransform(m_painter.transform);
    dc.setBrushOrigin(m_painter.brushOrigin);
    dc.setOpacity(m_painter.opacity);
}

void CShapeLayer::Drop()
{
    m_arShown.clear();
    m_pixels = {};
    m_nWidth = m_nHeight = 0;
}
