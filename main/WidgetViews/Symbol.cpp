#include "Symbol.h"

#include <QFile>
#include <QHash>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>
#include <QtMath>

Symbol::Symbol(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    updateImplicitSize();
}

void Symbol::setName(const QString& name)
{
    if (name != m_name) {
        m_name = name;
        updateImplicitSize();
        invalidate();
    }
    emit nameChanged();
}

void Symbol::setColor(const QColor& color)
{
    if (color != m_color) {
        m_color = color;
        invalidate();
    }
    emit colorChanged();
}

void Symbol::setPointSize(qreal size)
{
    size = qMax<qreal>(0, size);
    if (size != m_size) {
        m_size = size;
        updateImplicitSize();
        invalidate();
    }
    emit sizeChanged();
}

void Symbol::updateImplicitSize()
{
    const QSizeF box = glyphSize(m_name, m_size);
    setImplicitSize(box.width(), box.height());
}

QSizeF Symbol::glyphSize(const QString& name, qreal pointSize)
{
    // Grids read once per name; an unknown name keeps the square grid.
    static QHash<QString, QSizeF> grids;
    auto it = grids.constFind(name);
    if (it == grids.constEnd()) {
        QSizeF grid(gridUnits, gridUnits);
        if (exists(name)) {
            const QSizeF viewBox = QSvgRenderer(resourcePath(name)).viewBoxF().size();
            if (!viewBox.isEmpty())
                grid = viewBox;
        }
        it = grids.insert(name, grid);
    }
    return *it * (qMax<qreal>(0, pointSize) * emPerGrid / gridUnits);
}

void Symbol::invalidate()
{
    m_cache = QImage();
    update();
}

QString Symbol::resourcePath(const QString& name)
{
    return QStringLiteral(":/Ombrix/WidgetViews/symbols/%1.svg").arg(name);
}

bool Symbol::exists(const QString& name)
{
    // A name is a single file name; anything with a separator could reach elsewhere in the resources.
    return !name.isEmpty() && !name.contains(u'/') && QFile::exists(resourcePath(name));
}

QImage Symbol::tinted(const QString& name, const QColor& color, QSizeF box, qreal devicePixelRatio)
{
    if (!exists(name) || box.isEmpty() || devicePixelRatio <= 0)
        return {};
    QSvgRenderer svg(resourcePath(name));
    if (!svg.isValid())
        return {};

    const QSize px(qCeil(box.width() * devicePixelRatio), qCeil(box.height() * devicePixelRatio));
    QImage image(px, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QSizeF glyph = svg.viewBoxF().size();
    if (glyph.isEmpty())
        glyph = QSizeF(1, 1);
    glyph.scale(box * devicePixelRatio, Qt::KeepAspectRatio);
    svg.render(&p, QRectF(QPointF((px.width() - glyph.width()) / 2, (px.height() - glyph.height()) / 2), glyph));
    // SourceIn keeps the drawn coverage and takes every colour from the tint.
    p.setCompositionMode(QPainter::CompositionMode_SourceIn);
    p.fillRect(image.rect(), color);
    p.end();
    image.setDevicePixelRatio(devicePixelRatio);
    return image;
}

QIcon Symbol::icon(const QString& name, const QColor& color, int px)
{
    QIcon result;
    for (const qreal ratio : {1.0, 2.0}) {
        const QImage image = tinted(name, color, px, ratio);
        if (!image.isNull())
            result.addPixmap(QPixmap::fromImage(image));
    }
    return result;
}

void Symbol::paint(QPainter* painter)
{
    // Always the size the point size gives, centred; an item set smaller crops the glyph rather
    // than shrinking it.
    const QSizeF box = glyphSize(m_name, m_size);
    if (box.isEmpty())
        return;
    // The device transform carries the screen's pixel ratio and any scale of the item.
    const QTransform t = painter->deviceTransform();
    const qreal ratio = qMax<qreal>(std::hypot(t.m11(), t.m12()), 0.01);
    if (m_cache.isNull() || m_cache.width() != qCeil(box.width() * ratio) || m_cache.devicePixelRatio() != ratio)
        m_cache = tinted(m_name, m_color, box, ratio);
    if (m_cache.isNull())
        return;
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(QRectF(QPointF((width() - box.width()) / 2, (height() - box.height()) / 2), box), m_cache);
}
