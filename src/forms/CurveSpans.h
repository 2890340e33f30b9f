#pragma once

#include <QPointF>
#include <QRect>
#include <QSize>

#include <vector>

namespace korvalin {

/// Whether the points never step back to the left.
bool RunsRightward(const std::vector<QPointF>& points);

/// Turns a curve that runs rightward into the rectangles that a pen of `penWidth` device pixels covers, one a
/// column; columns of the same height are joined. Filling them is several times faster than stroking the
/// curve, because samples are often denser than pixels. The points are device pixels and finite; columns
/// outside `picture` are left out. `spans` is refilled.
void FillCurveSpans(const std::vector<QPointF>& points, int penWidth, QSize picture,
                    std::vector<QRect>& spans);

} // namespace korvalin
