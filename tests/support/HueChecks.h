#pragma once
// The system colours (red, orange, yellow, green) told apart by hue in screenshots, both as paint of
// their own and as a faint tint of the glass.
#include <QColor>
#include <QImage>
#include <QList>
#include <QPair>
#include <QRect>
#include <algorithm>
#include <ostream>

enum class Hue { None, Red, Orange, Yellow, Green };

inline const char* hueName(Hue h)
{
    static const char* names[] = {"none", "red", "orange", "yellow", "green"};
    return names[int(h)];
}
inline void PrintTo(Hue h, std::ostream* os)
{
    *os << hueName(h);
}

// Grey glass has no hue; a colour under `minSaturation` (0..255) counts as grey.
inline Hue hueOf(const QColor& c, int minSaturation = 90)
{
    if (c.alpha() < 20 || c.hsvSaturation() < minSaturation)
        return Hue::None;
    const int h = c.hsvHue();
    if (h < 15 || h > 345)
        return Hue::Red;
    if (h < 42)
        return Hue::Orange;
    if (h < 62)
        return Hue::Yellow;
    if (h > 100 && h < 160)
        return Hue::Green;
    return Hue::None;
}

// Drawn in a system colour itself, not glass tinted by a glow: opaque, bright and vivid.
inline Hue paintHue(const QColor& c)
{
    return c.alpha() > 200 && c.value() > 150 ? hueOf(c, 150) : Hue::None;
}

// The painted hue near `p` (anti-aliased edges aside), or None.
inline Hue paintHueNear(const QImage& img, QPoint p)
{
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
            if (const Hue h = paintHue(img.pixelColor(p + QPoint(dx, dy))); h != Hue::None)
                return h;
    return Hue::None;
}

inline int countPaint(const QImage& img, const QRect& r, Hue hue)
{
    int n = 0;
    const QRect inside = r & img.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x)
            n += paintHue(img.pixelColor(x, y)) == hue ? 1 : 0;
    return n;
}

// Red and green paint seen from left to right in a band of rows: one entry per run of columns
// holding such paint (runs more than `gap` columns apart are two), in the run's main colour.
inline QList<Hue> paintRuns(const QImage& img, int top, int bottom, int gap = 8)
{
    QList<QPair<int, int>> runs; // red and green pixel counts
    int lastX = -gap - 1;
    for (int x = 0; x < img.width(); ++x) {
        int red = 0, green = 0;
        for (int y = std::max(top, 0); y <= std::min(bottom, img.height() - 1); ++y) {
            const Hue h = paintHue(img.pixelColor(x, y));
            red += h == Hue::Red;
            green += h == Hue::Green;
        }
        if (red + green == 0)
            continue;
        if (x - lastX > gap)
            runs.append({0, 0});
        runs.last().first += red;
        runs.last().second += green;
        lastX = x;
    }
    QList<Hue> hues;
    for (const auto& [red, green] : runs)
        hues.append(red > green ? Hue::Red : Hue::Green);
    return hues;
}
