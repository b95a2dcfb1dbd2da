#include "VisualEffectView.h"

#include "ContinuousCorners.h"
#include "RootBackground.h"
#include "X11Window.h"

#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>
#include <algorithm>
#include <cmath>

namespace {

// One box pass along a row or a column of `n` pixels `step` apart, edges extended.
void boxLine(const QRgb* in, QRgb* out, int n, qsizetype step, int radius)
{
    const auto at = [&](int i) { return in[qsizetype(std::clamp(i, 0, n - 1)) * step]; };
    int r = 0, g = 0, b = 0;
    for (int i = -radius; i <= radius; ++i) {
        r += qRed(at(i));
        g += qGreen(at(i));
        b += qBlue(at(i));
    }
    const int width = 2 * radius + 1;
    for (int i = 0; i < n; ++i) {
        out[qsizetype(i) * step] = qRgb(r / width, g / width, b / width);
        const QRgb add = at(i + radius + 1), drop = at(i - radius);
        r += qRed(add) - qRed(drop);
        g += qGreen(add) - qGreen(drop);
        b += qBlue(add) - qBlue(drop);
    }
}

} // namespace

VisualEffectView::VisualEffectView(QQuickItem* parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    // A move is over once the window has stood still for a moment with the button up.
    m_moveSettle.setSingleShot(true);
    m_moveSettle.setInterval(150);
    connect(&m_moveSettle, &QTimer::timeout, this, &VisualEffectView::settleMove);
    auto& background = RootBackground::shared();
    connect(&background, &RootBackground::backgroundChanged, this, &VisualEffectView::scheduleRefresh);
    connect(&background, &RootBackground::compositingChanged, this, &VisualEffectView::scheduleRefresh);
}

QColor VisualEffectView::materialColor(int material)
{
    if (material == HudWindow)
        return QColor(22, 22, 26, 190);
    return QColor(70, 82, 104, 92);
}

double VisualEffectView::blurSigma(int material)
{
    return material == HudWindow ? 22.0 : 16.0;
}

QImage VisualEffectView::blurred(const QImage& image, double sigma)
{
    // Three box passes of width w have the variance of a Gaussian with 4 sigma^2 = w^2 - 1.
    const int radius = std::max(0, int(std::lround((std::sqrt(4 * sigma * sigma + 1) - 1) / 2)));
    QImage a = image.convertToFormat(QImage::Format_RGB32);
    if (radius == 0 || a.isNull())
        return a;
    QImage b(a.size(), QImage::Format_RGB32);
    const int w = a.width(), h = a.height();
    const qsizetype stride = a.bytesPerLine() / 4;
    for (int pass = 0; pass < 3; ++pass) {
        for (int y = 0; y < h; ++y)
            boxLine(reinterpret_cast<const QRgb*>(a.constScanLine(y)), reinterpret_cast<QRgb*>(b.scanLine(y)), w, 1,
                    radius);
        const auto* bits = reinterpret_cast<const QRgb*>(b.constBits());
        auto* outBits = reinterpret_cast<QRgb*>(a.bits());
        for (int x = 0; x < w; ++x)
            boxLine(bits + x, outBits + x, h, stride, radius);
    }
    return a;
}

void VisualEffectView::setMaterial(int m)
{
    m_material = m;
    emit materialChanged();
    scheduleRefresh();
}

void VisualEffectView::setCornerRadius(double r)
{
    m_cornerRadius = r;
    emit cornerRadiusChanged();
    scheduleRefresh();
}

void VisualEffectView::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() != oldGeometry.size())
        scheduleRefresh();
}

void VisualEffectView::itemChange(ItemChange change, const ItemChangeData& value)
{
    QQuickItem::itemChange(change, value);
    if (change != ItemSceneChange)
        return;
    for (const auto& c : std::as_const(m_windowConnections))
        disconnect(c);
    m_windowConnections.clear();
    if (QQuickWindow* w = value.window) {
        auto restartSettle = [this] { m_moveSettle.start(); };
        m_windowConnections << connect(w, &QWindow::xChanged, this, restartSettle)
                            << connect(w, &QWindow::yChanged, this, restartSettle)
                            << connect(w, &QWindow::screenChanged, this, &VisualEffectView::scheduleRefresh);
    }
    scheduleRefresh();
}

void VisualEffectView::scheduleRefresh()
{
    // Several triggers in one turn of the event loop (a resize is a width and a height) make one.
    if (m_refreshPending)
        return;
    m_refreshPending = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_refreshPending = false;
            refresh();
        },
        Qt::QueuedConnection);
}

void VisualEffectView::settleMove()
{
    if (x11::isLeftButtonDown()) {
        m_moveSettle.start();
        return;
    }
    if (deviceArea() != m_backdropArea)
        refresh();
}

QRect VisualEffectView::deviceArea() const
{
    if (!window())
        return {};
    const double dpr = window()->devicePixelRatio();
    const QPointF origin = mapToGlobal(QPointF(0, 0)) * dpr;
    return QRect(origin.toPoint(), (size() * dpr).toSize());
}

void VisualEffectView::refresh()
{
    const QRect area = deviceArea();
    const auto& background = RootBackground::shared();
    m_backdropArea = area;
    m_image = {};
    m_imageChanged = true;
    update();
    if (area.isEmpty())
        return;
    const double dpr = window()->devicePixelRatio();
    const double sigma = blurSigma(m_material) * dpr;
    // Taken wider than the glass, so the blur near its edges draws on what really lies beyond them.
    const int pad = int(std::ceil(3 * sigma));
    QImage source;
    if (!background.compositing() || !background.compositorBlursBehind())
        source = background.grab(area.adjusted(-pad, -pad, pad, pad));

    QImage out(area.size(), QImage::Format_ARGB32_Premultiplied);
    out.fill(Qt::transparent);
    QPainter p(&out);
    // Without a compositor the window is opaque: its corners show the wallpaper as it is, so the
    // rounded edge is drawn, anti-aliased, against what surrounds the window.
    if (!source.isNull() && !background.compositing())
        p.drawImage(QPoint(0, 0), source, QRect(QPoint(pad, pad), area.size()));
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF box(QPointF(0, 0), QSizeF(area.size()));
    QPainterPath shape;
    if (m_cornerRadius > 0)
        shape = corners::continuousRoundedRect(box, m_cornerRadius * dpr);
    else
        shape.addRect(box);
    if (!source.isNull()) {
        QBrush frosted(blurred(source, sigma));
        frosted.setTransform(QTransform::fromTranslate(-pad, -pad));
        p.fillPath(shape, frosted);
    }
    p.fillPath(shape, materialColor(m_material));
    p.scale(dpr, dpr);
    paintOver(&p, size());
    p.end();
    out.setDevicePixelRatio(dpr);
    m_image = out;
}

QSGNode* VisualEffectView::updatePaintNode(QSGNode* node, UpdatePaintNodeData*)
{
    if (m_imageChanged) {
        // A new node owns the new texture; the old one takes its texture with it.
        m_imageChanged = false;
        delete node;
        node = nullptr;
        if (!m_image.isNull()) {
            auto* image = window()->createImageNode();
            image->setTexture(window()->createTextureFromImage(m_image));
            image->setOwnsTexture(true);
            node = image;
        }
        m_image = {};
    }
    if (node)
        static_cast<QSGImageNode*>(node)->setRect(boundingRect());
    return node;
}
