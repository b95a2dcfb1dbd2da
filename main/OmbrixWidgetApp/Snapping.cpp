#include "Snapping.h"

#include <cmath>

namespace snapping {

namespace {
bool near(double a, double b)
{
    return std::fabs(a - b) < threshold;
}
} // namespace

Rect snap(Rect f, const Rect& v, const std::vector<Rect>& others)
{
    // Screen edges: four independent checks, each on the frame the previous one left.
    if (near(f.minX(), v.minX()))
        f.x = v.minX();
    if (near(f.maxX(), v.maxX()))
        f.x = v.maxX() - f.width;
    if (near(f.minY(), v.minY()))
        f.y = v.minY();
    if (near(f.maxY(), v.maxY()))
        f.y = v.maxY() - f.height;

    // Other widgets win over the screen, and a later one over an earlier one: no nearest-target
    // choice, each axis a first-match chain.
    for (const Rect& o : others) {
        if (near(f.minX(), o.minX()))
            f.x = o.minX();
        else if (near(f.maxX(), o.maxX()))
            f.x = o.maxX() - f.width;
        else if (near(f.minX(), o.maxX()))
            f.x = o.maxX();
        else if (near(f.maxX(), o.minX()))
            f.x = o.minX() - f.width;

        if (near(f.minY(), o.minY()))
            f.y = o.minY();
        else if (near(f.maxY(), o.maxY()))
            f.y = o.maxY() - f.height;
        else if (near(f.minY(), o.maxY()))
            f.y = o.maxY();
        else if (near(f.maxY(), o.minY()))
            f.y = o.minY() - f.height;
    }
    return f;
}

} // namespace snapping
