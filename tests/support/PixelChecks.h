#pragma once
// Pixel predicates for screenshots: what counts as colour (emoji) and as white (text, spokes);
// the ink of a glyph and the size of a line of text.
#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QRect>
#include <algorithm>

inline bool coloured(const QColor& c)
{
    const int spread = std::max({c.red(), c.green(), c.blue()}) - std::min({c.red(), c.green(), c.blue()});
    return c.alpha() > 150 && spread > 60;
}

inline bool bright(const QColor& c)
{
    return c.alpha() > 150 && c.red() > 200 && c.green() > 200 && c.blue() > 200;
}

inline int countPixels(const QImage& img, const QRect& r, bool (*test)(const QColor&))
{
    int n = 0;
    const QRect inside = r & img.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x)
            n += test(img.pixelColor(x, y)) ? 1 : 0;
    return n;
}

// The bounding box of the pixels inside `r` that pass `test`.
inline QRect boundsOf(const QImage& img, const QRect& r, bool (*test)(const QColor&))
{
    QRect bounds;
    const QRect inside = r & img.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x)
            if (test(img.pixelColor(x, y)))
                bounds |= QRect(x, y, 1, 1);
    return bounds;
}

// Where `width`, a text item's laid-out width, stands between the widths of its `text` in `font` at
// `px` and `px` + 1 whole pixels (with `spacing` between letters): 0 at the first, 1 at the second.
// Text at 12.5 stands half way; text rounded to 12 or 13 doesn't.
inline double betweenWholeSizes(QFont font, int px, const QString& text, double width, double spacing = 0)
{
    font.setLetterSpacing(QFont::AbsoluteSpacing, spacing);
    font.setPixelSize(px);
    const double low = QFontMetricsF(font).horizontalAdvance(text);
    font.setPixelSize(px + 1);
    return (width - low) / (QFontMetricsF(font).horizontalAdvance(text) - low);
}
