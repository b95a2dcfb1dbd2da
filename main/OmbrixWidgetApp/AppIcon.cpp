#include "AppIcon.h"

#include <QPainter>
#include <QSvgRenderer>

namespace appicon {

QImage render(int px)
{
    QImage image(px, px, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer svg(QStringLiteral(":/packaging/com.ombrixwidget.OmbrixWidget.svg"));
    QPainter p(&image);
    svg.render(&p, QRectF(0, 0, px, px));
    return image;
}

QIcon icon()
{
    QIcon icon;
    for (int px : {16, 22, 24, 32, 48}) {
        icon.addPixmap(QPixmap::fromImage(render(px)));
        QImage twice = render(px * 2);
        twice.setDevicePixelRatio(2);
        icon.addPixmap(QPixmap::fromImage(twice));
    }
    return icon;
}

} // namespace appicon
