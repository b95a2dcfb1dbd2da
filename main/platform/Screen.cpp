#include "Screen.h"

#include <QGuiApplication>
#include <QScreen>
#include <cmath>

namespace screen {

double primaryHeight()
{
    const QScreen* s = QGuiApplication::primaryScreen();
    return s ? s->geometry().height() : 900.0;
}

Rect visibleFrame()
{
    const QScreen* s = QGuiApplication::primaryScreen();
    if (!s)
        return Rect{0, 0, 1440, 900};
    return fromQt(s->availableGeometry(), s->geometry().height());
}

QRect toQt(const Rect& r, double screenHeight)
{
    return QRect(int(std::lround(r.x)), int(std::lround(screenHeight - (r.y + r.height))), int(std::lround(r.width)),
                 int(std::lround(r.height)));
}

Rect fromQt(const QRect& r, double screenHeight)
{
    return Rect{double(r.x()), screenHeight - (r.y() + r.height()), double(r.width()), double(r.height())};
}

} // namespace screen
