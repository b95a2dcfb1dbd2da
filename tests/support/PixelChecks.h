#pragma once
// Kinds of pixel in screenshots (colour, white, a system hue, one known colour), counted in a rectangle.
#include <QColor>
#include <QImage>
#include <QList>
#include <QRect>
#include <algorithm>
#include <cstdlib>

template <typename Test> int countPixels(const QImage& img, const QRect& r, Test test)
{
    int n = 0;
    const QRect inside = r & img.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x)
            n += test(img.pixelColor(x, y)) ? 1 : 0;
    return n;
}

// Emoji and painted states: vivid. Text and strokes: white.
inline bool coloured(const QColor& c)
{
    return c.alpha() > 150 && std::max({c.red(), c.green(), c.blue()}) - std::min({c.red(), c.green(), c.blue()}) > 60;
}
inline bool bright(const QColor& c)
{
    return c.alpha() > 150 && c.red() > 200 && c.green() > 200 && c.blue() > 200;
}

inline bool nearColor(const QColor& a, const QColor& b, int tolerance = 12)
{
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}
// Opaque and `c` within `tolerance`.
inline auto opaqueNear(const QColor& c, int tolerance = 30)
{
    return [c, tolerance](const QColor& p) { return p.alpha() > 200 && nearColor(p, c, tolerance); };
}
inline int countNear(const QImage& img, const QRect& r, const QColor& c, int tolerance = 30)
{
    return countPixels(img, r, opaqueNear(c, tolerance));
}

// The system colours told apart by hue, as paint of their own or as a faint tint of the glass.
enum class Hue { None, Red, Orange, Yellow, Green };
// A colour under `minSaturation` (0..255) counts as grey glass.
inline Hue hueOf(const QColor& c, int minSaturation = 90)
{
    const int h = c.hsvHue();
    if (c.alpha() < 20 || c.hsvSaturation() < minSaturation)
        return Hue::None;
    if (h < 15 || h > 345)
        return Hue::Red;
    return h < 42 ? Hue::Orange : h < 62 ? Hue::Yellow : h > 100 && h < 160 ? Hue::Green : Hue::None;
}
// Drawn in a system colour itself, not glass tinted by a glow: opaque, bright and vivid.
inline Hue paintHue(const QColor& c)
{
    return c.alpha() > 200 && c.value() > 150 ? hueOf(c, 150) : Hue::None;
}
inline auto painted(Hue hue)
{
    return [hue](const QColor& c) { return paintHue(c) == hue; };
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
    int lastX = -gap - 1, balance = 0; // red minus green pixels of the current run
    for (int x = 0; x < img.width(); ++x) {
        const int red = countPaint(img, QRect(x, top, 1, bottom - top + 1), Hue::Red);
        const int green = countPaint(img, QRect(x, top, 1, bottom - top + 1), Hue::Green);
        if (red + green == 0)
            continue;
        if (x - lastX > gap && lastX >= 0)
            hues.append(balance > 0 ? Hue::Red : Hue::Green), balance = 0;
        balance += red - green;
        lastX = x;
    }
    if (lastX >= 0)
        hues.append(balance > 0 ? Hue::Red : Hue::Green);
    return hues;
}
