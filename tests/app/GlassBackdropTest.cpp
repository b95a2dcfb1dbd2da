// The frosted glass over a real wallpaper, without a compositor and under two, seen from outside the app.
#include "DefaultsSuite.h"
#include "SettingsManager.h"
#include "WeatherMonitor.h"
#include "XSession.h"

#include <QElapsedTimer>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <QSet>
#include <gtest/gtest.h>

namespace {

// Columns 8 px wide, black and white: as much contrast as a wallpaper can have.
QImage stripes()
{
    QImage image(1440, 900, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, (x / 8) % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
    return image;
}

// Something like a photograph: a dusk sky, soft lights and a dark hill.
QImage photo()
{
    QImage image(1440, 900, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, 900);
    sky.setColorAt(0, QColor(18, 40, 110));
    sky.setColorAt(0.55, QColor(150, 70, 140));
    sky.setColorAt(1, QColor(250, 150, 50));
    p.fillRect(image.rect(), sky);
    const QList<std::pair<QPointF, QColor>> lights = {{{1000, 330}, QColor(255, 240, 170)},
                                                      {{860, 560}, QColor(60, 220, 255)},
                                                      {{300, 300}, QColor(255, 90, 60)},
                                                      {{1380, 760}, QColor(255, 255, 255)}};
    for (const auto& [centre, colour] : lights) {
        QRadialGradient g(centre, 160);
        g.setColorAt(0, colour);
        g.setColorAt(1, Qt::transparent);
        p.fillRect(image.rect(), g);
    }
    QPainterPath hill(QPointF(0, 900));
    hill.cubicTo(400, 560, 900, 980, 1440, 620);
    hill.lineTo(1440, 900);
    p.fillPath(hill, QColor(25, 30, 40));
    return image;
}

double luma(QRgb c)
{
    return 0.299 * qRed(c) + 0.587 * qGreen(c) + 0.114 * qBlue(c);
}

// An empty stretch of glass: the left margin, outside the content inset and clear of the corners.
QRect glassArea(const QRect& window)
{
    return QRect(window.x() + 5, window.y() + 60, 10, 50);
}

double spread(const QImage& image, const QRect& r)
{
    double lo = 255, hi = 0;
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x) {
            lo = std::min(lo, luma(image.pixel(x, y)));
            hi = std::max(hi, luma(image.pixel(x, y)));
        }
    return hi - lo;
}

int colourDistance(QRgb a, QRgb b)
{
    return std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) + std::abs(qBlue(a) - qBlue(b));
}

// One pixel in from each corner of a window: outside its rounded shape.
QList<QPoint> cornerPixels(const QRect& w)
{
    return {w.topLeft() + QPoint(1, 1), w.topRight() + QPoint(-1, 1), w.bottomLeft() + QPoint(1, -1),
            w.bottomRight() + QPoint(-1, -1)};
}

QRgb mean(const QImage& image, const QRect& r)
{
    return image.copy(r).scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixel(0, 0);
}

void setWallpaper(XSession& x, const QImage& image, const QString& name)
{
    const QString file = x.home() + "/" + name + ".png";
    image.save(file);
    x.run("feh", {"--no-fehbg", "--bg-fill", file});
}

struct GlassSetup {
    const char* compositor;
    const char* theme;
};

} // namespace

TEST(GlassBackdrop, FrostsTheWallpaperUnderEveryCompositorAndFollowsIt)
{
    const QStringList widgets = {"clock", "weather", "battery", "music"};
    const QImage wallpaper = stripes(), second = photo();
    // picom as Debian starts it: its defaults, with no blur.
    for (const GlassSetup& s :
         {GlassSetup{"none", "transparent"}, GlassSetup{"none", "opaque"}, GlassSetup{"xcompmgr", "transparent"},
          GlassSetup{"xcompmgr", "opaque"}, GlassSetup{"picom", "transparent"}}) {
        const QString name = QString("%1-%2").arg(s.compositor, s.theme);
        SCOPED_TRACE(name.toStdString());
        XSessionOptions options;
        if (QString(s.compositor) != "none")
            options.compositor = {QString(s.compositor)};
        XSession x(options);
        ASSERT_TRUE(x.ok());
        setWallpaper(x, wallpaper, "stripes");
        {
            auto suite = DefaultsSuite::open(SettingsManager::suiteName, x.configDir());
            for (const QString& w : widgets)
                suite->setObject(true, "widget." + w + ".enabled");
            suite->setObject(QString(s.theme), "glass-theme");
            for (auto service : {WeatherMonitor::Service::IpApi, WeatherMonitor::Service::Geocoding,
                                 WeatherMonitor::Service::Forecast})
                suite->setObject(QString("http://127.0.0.1:9"), WeatherMonitor::configKey(service));
            suite->synchronize();
        }
        ASSERT_TRUE(x.startApp());
        QList<QRect> windows;
        for (const QString& w : widgets)
            windows << x.geometryOf(x.waitForWindow("OmbrixWidget " + w));
        if (!options.compositor.isEmpty()) {
            EXPECT_TRUE(x.helperRunning(s.compositor));
        }

        // Seen bare, the stripes span the whole range, and glass without a backdrop lets at least a
        // quarter of it through (the dark theme under a compositor); frosted, at most a sixteenth
        // shows. Without a compositor the glass is opaque, and only corners showing the wallpaper
        // tell its backdrop from a dark slab.
        const bool opaqueWindow = options.compositor.isEmpty();
        QImage screen;
        const auto cornersShowWallpaper = [&](const QRect& w) {
            const auto points = cornerPixels(w);
            return std::all_of(points.begin(), points.end(), [&](const QPoint& p) {
                return colourDistance(screen.pixel(p), wallpaper.pixel(p)) <= 6;
            });
        };
        const auto frosted = [&] {
            screen = x.grabScreen();
            return !screen.isNull() && std::all_of(windows.begin(), windows.end(), [&](const QRect& w) {
                return spread(screen, glassArea(w)) <= spread(wallpaper, glassArea(w)) / 16 &&
                       (!opaqueWindow || cornersShowWallpaper(w));
            });
        };
        EXPECT_TRUE(XSession::waitFor(frosted, 10000));
        for (const QRect& w : windows)
            EXPECT_LE(spread(screen, glassArea(w)), spread(wallpaper, glassArea(w)) / 16) << w.x() << "," << w.y();

        if (opaqueWindow) {
            // Its corners show the wallpaper as it is around the window, and the rounded edge is
            // blended into it.
            for (const QRect& w : windows) {
                EXPECT_TRUE(cornersShowWallpaper(w)) << w.x() << "," << w.y();
                QSet<QRgb> arc;
                for (int i = 0; i <= 24; ++i) {
                    const double a = M_PI / 2 * i / 24;
                    arc << screen.pixel(w.topLeft() + QPointF(28 - 25 * std::cos(a), 28 - 25 * std::sin(a)).toPoint());
                }
                EXPECT_GT(arc.size(), 2) << w.x() << "," << w.y();
            }
        }

        // A new wallpaper shows through the glass within a second.
        QList<QRgb> before;
        for (const QRect& w : windows)
            before << mean(screen, glassArea(w));
        QElapsedTimer clock;
        clock.start();
        setWallpaper(x, second, "photo");
        const bool followed = XSession::waitFor(
            [&] {
                screen = x.grabScreen();
                for (int i = 0; i < windows.size(); ++i)
                    if (screen.isNull() || colourDistance(mean(screen, glassArea(windows[i])), before[i]) < 12)
                        return false;
                return true;
            },
            3000);
        EXPECT_TRUE(followed);
        EXPECT_LE(clock.elapsed(), 1000);
        screen.save(artifactsDir() + "/glass-" + name + ".png");
    }
}
