#pragma once
// Rectangles in the app's own coordinates: points, origin at the bottom left of the main display,
// y growing upward.

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double minX() const { return x; }
    double maxX() const { return x + width; }
    double minY() const { return y; }
    double maxY() const { return y + height; }
    bool operator==(const Rect&) const = default;
};
