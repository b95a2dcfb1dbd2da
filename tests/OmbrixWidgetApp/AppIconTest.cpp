// The tray icon reads on light and dark panels and is crisp at every tray size.
#include "AppIcon.h"

#include <QColor>
#include <cmath>
#include <gtest/gtest.h>

TEST(AppIcon, ItsRimStandsOutOnWhiteAndBlackAndItsPixelsAreWholeAtEveryTraySize)
{
    const auto luminance = [](const QColor& c) {
        const auto lin = [](double v) { return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
        return 0.2126 * lin(c.redF()) + 0.7152 * lin(c.greenF()) + 0.0722 * lin(c.blueF());
    };
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
                // 3:1 against black asks for a luminance of at least 0.1, against white at most 0.3.
                EXPECT_TRUE(luminance(c) >= 0.1 && luminance(c) <= 0.3) << px << " px, row " << y;
            }
        EXPECT_GE(rim, px / 2) << px;
        // Crisp: the white ring and the coloured face fill whole pixels; the corners are clear.
        EXPECT_GE(white, px * px / 16) << px;
        EXPECT_GE(face, px * px / 3) << px;
        EXPECT_EQ(img.pixelColor(0, 0).alpha(), 0) << px;
    }
}
