// Where a dropped widget lands, and where each widget opens: pure geometry.
#include "Snapping.h"
#include "WidgetTable.h"

#include <gtest/gtest.h>

namespace {
const Rect V{0, 0, 1440, 900};
const auto small = [](double x, double y) { return Rect{x, y, 170, 170}; };
const auto medium = [](double x, double y) { return Rect{x, y, 340, 170}; };
} // namespace

TEST(Snapping, TableOfMoves)
{
    struct Case {
        const char* what;
        Rect moved;
        std::vector<Rect> others;
        Rect expected;
    };
    const std::vector<Case> cases = {
        {"left edge at 11.9 snaps", small(11.9, 300), {}, small(0, 300)},
        {"left edge at 12.0 stays", small(12.0, 300), {}, small(12.0, 300)},
        {"left edge at -11.9 snaps back", small(-11.9, 300), {}, small(0, 300)},
        {"bottom edge", small(500, 8), {}, small(500, 0)},
        {"right and top edges at once", small(1265, 724), {}, small(1270, 730)},
        {"right of another, far apart vertically", small(675, 600), {small(500, 300)}, small(670, 600)},
        {"left of another, touching", small(325, 100), {small(500, 300)}, small(330, 100)},
        {"above another", small(800, 474), {small(500, 300)}, small(800, 470)},
        {"below another", small(800, 135), {small(500, 300)}, small(800, 130)},
        {"both chains' first lines: exactly on top", small(505, 305), {small(500, 300)}, small(500, 300)},
        {"screen then widget 14 away: screen wins", small(6, 500), {small(14, 100)}, small(0, 500)},
        {"screen then widget 10 away: widget wins, off the edge", small(6, 500), {small(10, 100)}, small(10, 500)},
        {"medium against small: left edges align", medium(205, 500), {small(200, 100)}, medium(200, 500)},
        {"small under a medium's right edge: right edges align", small(375, 100), {medium(200, 500)}, small(370, 100)},
        {"walk order decides, not nearness", small(105, 500), {small(100, 100), small(110, 700)}, small(110, 500)},
        {"widgets off screen still attract", small(-300, 500), {small(-305, 1200)}, small(-305, 500)},
        {"nothing near: unchanged", small(400, 400), {small(800, 100)}, small(400, 400)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(snapping::snap(c.moved, V, c.others), c.expected);
    }
}

TEST(WidgetTable, FramesAndDefaultOrigins)
{
    struct Case {
        QString name, size;
        double x, y, width;
    };
    const QList<Case> cases = {
        {"clock", "small", 1250, 690, 170}, {"weather", "small", 1250, 480, 170}, {"battery", "small", 1250, 270, 170},
        {"music", "medium", 1080, 40, 340}, {"clock", "medium", 1080, 690, 340},  {"music", "large", 1250, 40, 170},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE((c.name + "/" + c.size).toStdString());
        const double w = widgets::widthForSize(c.size);
        EXPECT_EQ(w, c.width);
        const auto origin = widgets::defaultOrigin(c.name, V, w);
        ASSERT_TRUE(origin);
        EXPECT_EQ(*origin, (Position{c.x, c.y}));
    }
    // The visible frame's own origin moves every default with it.
    EXPECT_EQ(widgets::defaultOrigin("music", Rect{0, 25, 1440, 850}, 340), (Position{1080, 65}));
    EXPECT_FALSE(widgets::defaultOrigin("calendar", V, 170));
}
