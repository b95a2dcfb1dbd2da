// The tray icon reads on light and dark panels and is crisp at every tray size.
#include "AppIcon.h"

#include <QColor>
#include <cmath>
#include <gtest/gtest.h>

namespace {

double luminance(const QColor& c)
{
    const auto lin = [](double v) { return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
    return 0.2126 * lin(c.redF()) + 0.7152 * lin(c.greenF()) + 0.0722 * lin(c.blueF());
}

double contrast(double a, double b)
{
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

} // namespace

TEST(AppIcon, ItsEdgeStandsOutOnWhiteAndBlackAtEveryTraySize)
{
    for (int px : {16, 22, 24, 32, 48, 32, 44, 48, 64, 96}) {
        const QImage img = appicon::render(px).convertToFormat(QImage::Format_ARGB32);
        // What meets the panel is the icon's rim: the first fully covered pixel of each row.
        for (const QColor panel : {QColor(Qt::white), QColor(Qt::black)}) {
            int rim = 0, legible = 0;
            const auto check = [&](int x, int y) {
                const QColor c = img.pixelColor(x, y);
                ++rim;
                legible += contrast(luminance(c), luminance(panel)) >= 3.0;
            };
            for (int y = 0; y < px; ++y)
                for (int x = 0; x < px; ++x)
                    if (img.pixelColor(x, y).alpha() == 255) {
                        check(x, y);
                        break;
                    }
            EXPECT_EQ(legible, rim) << px << " px on " << panel.name().toStdString();
            EXPECT_GE(rim, px / 2) << px;
        }
        // Crisp: the mark's white ring and the coloured face each fill whole pixels somewhere,
        // and the corners are clear.
        int white = 0, face = 0;
        for (int y = 0; y < px; ++y)
            for (int x = 0; x < px; ++x) {
                const QColor c = img.pixelColor(x, y);
                white += c.alpha() == 255 && c.red() == 255 && c.green() == 255 && c.blue() == 255;
                face += c.alpha() == 255 && c.blue() > 200 && c.red() < 100;
            }
        EXPECT_GE(white, px * px / 16) << px;
        EXPECT_GE(face, px * px / 3) << px;
        EXPECT_EQ(img.pixelColor(0, 0).alpha(), 0) << px;
    }
}
