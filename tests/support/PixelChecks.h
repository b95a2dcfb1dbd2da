#pragma once
// Pixel predicates for screenshots: what counts as colour (emoji) and as white (text, spokes).
#include <QColor>
#include <QImage>
#include <QRect>
#include <algorithm>

inline bool coloured(const QColor& c)
{
    const int spread = std::max({c.red(), c.green(), c.blue()}) - std::min({c.red(), c.green(), c.blue()});
    return c.alpha() > 150 && spread > 60;
}

inline bool bright(const QColor& c) { return c.alpha() > 150 && c.red() > 200 && c.green() > 200 && c.blue() > 200; }

inline int countPixels(const QImage& img, const QRect& r, bool (*test)(const QColor&))
{
    int n = 0;
    const QRect inside = r & img.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x)
            n += test(img.pixelColor(x, y)) ? 1 : 0;
    return n;
}
