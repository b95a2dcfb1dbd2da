#include "ContinuousCorners.h"

#include <QPolygon>
#include <algorithm>
#include <array>

namespace corners {

namespace {

// One corner as three cubic segments, in (distance back along the incoming edge, distance out along
// the outgoing edge), in radii.
struct Pt {
    double s, t;
};
constexpr double kSpan = 1.52866483;
constexpr std::array<std::array<Pt, 3>, 3> kCorner = {{
    {{{1.08849296, 0}, {0.86840694, 0}, {0.63149399, 0.07491100}}},
    {{{0.37282383, 0.16905956}, {0.16905956, 0.37282383}, {0.07491100, 0.63149399}}},
    {{{0, 0.86840694}, {0, 1.08849296}, {0, kSpan}}},
}};

} // namespace

QPainterPath continuousRoundedRect(const QRectF& rect, double radius)
{
    QPainterPath path;
    const double r = std::clamp(radius, 0.0, std::min(rect.width(), rect.height()) / (2 * kSpan));
    if (r <= 0) {
        path.addRect(rect);
        return path;
    }
    // Corners clockwise from top right (y down): corner point, incoming and outgoing directions.
    struct Corner {
        QPointF c, in, out;
    };
    const std::array<Corner, 4> cs = {{
        {rect.topRight(), {1, 0}, {0, 1}},
        {rect.bottomRight(), {0, 1}, {-1, 0}},
        {rect.bottomLeft(), {-1, 0}, {0, -1}},
        {rect.topLeft(), {0, -1}, {1, 0}},
    }};
    const auto at = [r](const Corner& k, Pt p) { return k.c - k.in * (p.s * r) + k.out * (p.t * r); };
    path.moveTo(at(cs[3], {0, kSpan}));
    for (const auto& k : cs) {
        path.lineTo(at(k, {kSpan, 0}));
        for (const auto& seg : kCorner)
            path.cubicTo(at(k, seg[0]), at(k, seg[1]), at(k, seg[2]));
    }
    path.closeSubpath();
    return path;
}

QRegion continuousRoundedRegion(const QRect& rect, double radius)
{
    const auto poly = continuousRoundedRect(QRectF(rect), radius).toFillPolygon().toPolygon();
    return QRegion(poly, Qt::WindingFill);
}

} // namespace corners
