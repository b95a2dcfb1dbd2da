// The frosted glass over a real wallpaper, without a compositor and under two, seen from outside the app.
#include "XSession.h"

#include <QPainter>
#include <QSet>
#include <gtest/gtest.h>

namespace {

double luma(QRgb c)
{
    return 0.299 * qRed(c) + 0.587 * qGreen(c) + 0.114 * qBlue(c);
}

// Brightest minus darkest pixel of an empty stretch of glass: the left margin, clear of the corners.
double spread(const QImage& image, const QRect& window)
{
    double lo = 255, hi = 0;
    for (int y = window.y() + 60; y < window.y() + 110; ++y)
        for (int x = window.x() + 5; x < window.x() + 15; ++x) {
            lo = std::min(lo, luma(image.pixel(x, y)));
            hi = std::max(hi, luma(image.pixel(x, y)));
        }
    return hi - lo;
}

QRgb mean(const QImage& image, const QRect& window)
{
    return image.copy(window.x() + 5, window.y() + 60, 10, 50)
        .scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .pixel(0, 0);
}

int distance(QRgb a, QRgb b)
{
    return std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) + std::abs(qBlue(a) - qBlue(b));
}

void setWallpaper(const XSession& x, const QImage& image)
{
    const QString file = x.home() + "/wallpaper.png";
    image.save(file);
    x.run("feh", {"--no-fehbg", "--bg-fill", file});
}

} // namespace

TEST(GlassBackdrop, FrostsTheWallpaperUnderEveryCompositorAndFollowsIt)
{
    // Black and white columns 8 px wide: as much contrast as a wallpaper can have; then an orange sky.
    QImage stripes(1440, 900, QImage::Format_RGB32), sky(1440, 900, QImage::Format_RGB32);
    for (int x = 0; x < 1440; ++x)
        QPainter(&stripes).fillRect(x, 0, 1, 900, (x / 8) % 2 ? Qt::white : Qt::black);
    sky.fill(QColor(250, 150, 50));
    const QStringList widgets = {"clock", "weather", "battery", "music"};
    for (const auto& [compositor, theme] : {std::pair{"", "transparent"},
                                            {"", "opaque"},
                                            {"xcompmgr", "transparent"},
                                            {"xcompmgr", "opaque"},
                                            {"picom", "transparent"}}) {
        SCOPED_TRACE(QString("%1 %2").arg(compositor, theme).toStdString());
        XSession x(XSessionOptions{.compositor = QString(compositor).split(' ', Qt::SkipEmptyParts)});
        ASSERT_TRUE(x.ok());
        setWallpaper(x, stripes);
        x.enable(widgets);
        x.pointWeatherAt();
        {
            auto suite = x.settings();
            suite->setObject(QString(theme), "glass-theme");
            suite->synchronize();
        }
        ASSERT_TRUE(x.startApp());
        QList<QRect> windows;
        for (const QString& w : widgets)
            windows << x.geometryOf(x.widget(w));
        // Frosted, at most a sixteenth of the stripes' range shows. Without a compositor the glass is
        // opaque: there its corners show the wallpaper as it is around the window, rounded and blended.
        QImage screen;
        const auto cornersShowWallpaper = [&](const QRect& w) {
            QSet<QRgb> arc;
            for (int i = 0; i <= 24; ++i)
                arc << screen.pixel(
                    w.topLeft() +
                    QPointF(28 - 25 * std::cos(M_PI / 48 * i), 28 - 25 * std::sin(M_PI / 48 * i)).toPoint());
            return distance(screen.pixel(w.topLeft() + QPoint(1, 1)), stripes.pixel(w.topLeft() + QPoint(1, 1))) <= 6 &&
                   distance(screen.pixel(w.bottomRight() - QPoint(1, 1)),
                            stripes.pixel(w.bottomRight() - QPoint(1, 1))) <= 6 &&
                   arc.size() > 2;
        };
        EXPECT_TRUE(XSession::waitFor([&] {
            screen = x.grabScreen();
            return !screen.isNull() && std::all_of(windows.begin(), windows.end(), [&](const QRect& w) {
                return spread(screen, w) <= 255 / 16 && (*compositor || cornersShowWallpaper(w));
            });
        }));
        // A new wallpaper shows through the glass.
        QList<QRgb> before;
        for (const QRect& w : windows)
            before << mean(screen, w);
        setWallpaper(x, sky);
        EXPECT_TRUE(XSession::waitFor([&] {
            screen = x.grabScreen();
            for (int i = 0; i < windows.size(); ++i)
                if (screen.isNull() || distance(mean(screen, windows[i]), before[i]) < 12)
                    return false;
            return true;
        }));
        screen.save(artifactsDir() + QString("/glass-%1-%2.png").arg(*compositor ? compositor : "none", theme));
    }
}
