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

} // namespace

TEST(AppIcon, ItsRimStandsOutOnWhiteAndBlackAndItsPixelsAreWholeAtEveryTraySize)
{
    for (int px : {16, 22, 24, 32, 44, 48, 64, 96}) {
        const QImage img = appicon::render(px).convertToFormat(QImage::Format_ARGB32);
        // What meets the panel is the rim: the first fully covered pixel of each row.
        int rim = 0, white = 0, face = 0;
        for (int y = 0; y < px; ++y)
            for (int x = 0, rowRim = 0; x < px; ++x) {
                const QColor c = img.pixelColor(x, y);
                white += c == Qt::white;
                face += c.alpha() == 255 && c.blue() > 200 && c.red() < 100;
                if (c.alpha() < 255 || rowRim++)
                    continue;
                ++rim;
                for (const double panel : {0.0, 1.0}) // black and white
                    EXPECT_GE((std::max(luminance(c), panel) + 0.05) / (std::min(luminance(c), panel) + 0.05), 3.0)
                        << px << " px, row " << y;
            }
        EXPECT_GE(rim, px / 2) << px;
        // Crisp: the white ring and the coloured face fill whole pixels; the corners are clear.
        EXPECT_GE(white, px * px / 16) << px;
        EXPECT_GE(face, px * px / 3) << px;
        EXPECT_EQ(img.pixelColor(0, 0).alpha(), 0) << px;
    }
}
