#pragma once
// Screenshot checks against one known colour: the same colour within a tolerance per channel.
#include <QColor>
#include <QImage>
#include <QRect>
#include <cstdlib>

inline bool nearColor(const QColor& a, const QColor& b, int tolerance = 12)
{
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}

// Opaque pixels of `img` inside `r` that are `c` within `tolerance`.
inline int countNear(const QImage& img, const QRect& r, const QColor& c, int tolerance = 30)
{
    int n = 0;
    const QRect inside = r & img.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x) {
            const QColor p = img.pixelColor(x, y);
            n += p.alpha() > 200 && nearColor(p, c, tolerance) ? 1 : 0;
        }
    return n;
}
