#pragma once
// Kinds of pixel in screenshots (colour, white, a system hue, one known colour), counted in a rectangle.
#include <QColor>
#include <QImage>
#include <QList>
#include <QRect>
#include <algorithm>
#include <cstdlib>

template <typename Kind> int countPixels(const QImage& img, const QRect& r, Kind kind)
{
    int n = 0;
    const QRect inside = r & img.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x)
            n += kind(img.pixelColor(x, y)) ? 1 : 0;
    return n;
}

// Emoji and painted states are vivid; text and strokes white.
inline bool coloured(const QColor& c)
{
    return c.alpha() > 150 && std::max({c.red(), c.green(), c.blue()}) - std::min({c.red(), c.green(), c.blue()}) > 60;
}
inline bool bright(const QColor& c)
{
    return c.alpha() > 150 && std::min({c.red(), c.green(), c.blue()}) > 200;
}

inline bool nearColor(const QColor& a, const QColor& b, int tolerance = 12)
{
    return std::max({std::abs(a.red() - b.red()), std::abs(a.green() - b.green()), std::abs(a.blue() - b.blue())}) <=
           tolerance;
}
inline auto opaqueNear(const QColor& c, int tolerance = 30)
{
    return [c, tolerance](const QColor& p) { return p.alpha() > 200 && nearColor(p, c, tolerance); };
}
inline int countNear(const QImage& img, const QRect& r, const QColor& c, int tolerance = 30)
{
    return countPixels(img, r, opaqueNear(c, tolerance));
}

// The system colours told apart by hue; under `minSaturation` (0..255) a colour is grey glass.
enum class Hue { None, Red, Orange, Yellow, Green };
inline Hue hueOf(const QColor& c, int minSaturation = 90)
{
    const int h = c.hsvHue();
    if (c.alpha() < 20 || c.hsvSaturation() < minSaturation)
        return Hue::None;
    const Hue hues[] = {Hue::Red, Hue::Orange, Hue::Yellow, Hue::None, Hue::Green, Hue::None, Hue::Red};
    const int below[] = {15, 42, 62, 101, 160, 346, 361}; // degrees where each hue ends
    return hues[std::upper_bound(below, below + 7, h) - below];
}
// Drawn in a system colour itself, not glass tinted by a glow: opaque, bright and vivid.
inline auto painted(Hue hue)
{
    return [hue](const QColor& c) { return c.alpha() > 200 && c.value() > 150 && hueOf(c, 150) == hue; };
}
inline int countPaint(const QImage& img, const QRect& r, Hue hue)
{
    return countPixels(img, r, painted(hue));
}

// Red and green paint from left to right in a band of rows: one entry per run of columns holding
// such paint (runs more than `gap` apart are two), in the run's main colour.
inline QList<Hue> paintRuns(const QImage& img, int top, int bottom, int gap = 8)
{
    QList<Hue> hues;
    int lastX = -1, balance = 0; // red minus green pixels of the current run
    for (int x = 0; x <= img.width(); ++x) {
        const QRect column(x, top, 1, bottom - top + 1);
        const int red = countPaint(img, column, Hue::Red), green = countPaint(img, column, Hue::Green);
        if (lastX >= 0 && (x == img.width() || (red + green > 0 && x - lastX > gap)))
            hues.append(balance > 0 ? Hue::Red : Hue::Green), balance = 0;
        if (red + green > 0)
            balance += red - green, lastX = x;
    }
    return hues;
}
