#pragma once
// Rounded rectangles with continuous (squircle-like) corners: the curve eases into the straight
// edge over about 1.53 radii instead of meeting it at a circle's tangent.
#include <QPainterPath>
#include <QRectF>
#include <QRegion>

namespace corners {

QPainterPath continuousRoundedRect(const QRectF& rect, double radius);

// The same shape as a window mask, so corners stay see-through even without a compositor.
QRegion continuousRoundedRegion(const QRect& rect, double radius);

} // namespace corners
