#pragma once
// Connected patches of like pixels in a screenshot, for finding controls (switch knobs, checkboxes)
// from outside the app.
#include <QColor>
#include <QImage>
#include <QList>
#include <QRect>
#include <algorithm>
#include <functional>
#include <vector>

// Bounding boxes of the 4-connected patches of pixels inside `area` that pass `test`, ordered top
// to bottom, then left to right.
inline QList<QRect> blobs(const QImage& img, const QRect& area, const std::function<bool(const QColor&)>& test)
{
    const QRect r = area & img.rect();
    std::vector<char> seen(size_t(std::max(0, r.width() * r.height())), 0);
    const auto at = [&](QPoint p) -> char& { return seen[size_t((p.y() - r.top()) * r.width() + p.x() - r.left())]; };
    QList<QRect> found;
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x) {
            if (at({x, y}) || !test(img.pixelColor(x, y)))
                continue;
            QRect box(x, y, 1, 1);
            std::vector<QPoint> todo{{x, y}};
            at({x, y}) = 1;
            while (!todo.empty()) {
                const QPoint p = todo.back();
                todo.pop_back();
                box |= QRect(p, QSize(1, 1));
                for (const QPoint d : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
                    const QPoint n = p + d;
                    if (r.contains(n) && !at(n) && test(img.pixelColor(n))) {
                        at(n) = 1;
                        todo.push_back(n);
                    }
                }
            }
            found.append(box);
        }
    std::stable_sort(found.begin(), found.end(), [](const QRect& a, const QRect& b) {
        return a.top() != b.top() ? a.top() < b.top() : a.left() < b.left();
    });
    return found;
}

// Only the patches whose width and height both lie in [minSide, maxSide].
inline QList<QRect> sized(const QList<QRect>& boxes, int minSide, int maxSide)
{
    QList<QRect> out;
    for (const QRect& b : boxes)
        if (std::min(b.width(), b.height()) >= minSide && std::max(b.width(), b.height()) <= maxSide)
            out.append(b);
    return out;
}
