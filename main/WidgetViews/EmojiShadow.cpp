#include "EmojiShadow.h"

#include <QPainter>
#include <algorithm>
#include <vector>

namespace {

// One box-blur pass over a line of alpha values, `step` apart; edges count as transparent.
void boxPass(uchar* line, int count, int step, int half)
{
    std::vector<int> src(count);
    for (int i = 0; i < count; ++i)
        src[i] = line[i * step];
    const int width = 2 * half + 1;
    int sum = 0;
    for (int i = 0; i <= std::min(half, count - 1); ++i)
        sum += src[i];
    for (int i = 0; i < count; ++i) {
        line[i * step] = uchar(sum / width);
        if (i + half + 1 < count)
            sum += src[i + half + 1];
        if (i - half >= 0)
            sum -= src[i - half];
    }
}

// Three box passes each way come close to a Gaussian whose spread is half the radius.
void blurAlpha(QImage& alpha, int radius)
{
    const int half = std::max(1, radius / 2);
    uchar* bits = alpha.bits();
    const int w = alpha.width(), h = alpha.height(), stride = int(alpha.bytesPerLine());
    for (int pass = 0; pass < 3; ++pass) {
        for (int y = 0; y < h; ++y)
            boxPass(bits + y * stride, w, 1, half);
        for (int x = 0; x < w; ++x)
            boxPass(bits + x, h, stride, half);
    }
}

} // namespace

EmojiShadow::EmojiShadow(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    setAcceptedMouseButtons(Qt::NoButton);
}

void EmojiShadow::changeAndRepaint()
{
    emit changed();
    update();
}

void EmojiShadow::setText(const QString& t)
{
    if (t == m_text)
        return;
    m_text = t;
    changeAndRepaint();
}

void EmojiShadow::setFont(const QFont& f)
{
    if (f == m_font)
        return;
    m_font = f;
    changeAndRepaint();
}

void EmojiShadow::setColor(const QColor& c)
{
    if (c == m_color)
        return;
    m_color = c;
    changeAndRepaint();
}

void EmojiShadow::setRadius(int r)
{
    if (r == m_radius)
        return;
    m_radius = std::max(0, r);
    changeAndRepaint();
}

QImage EmojiShadow::shadowImage(const QString& text, const QFont& font, const QColor& color, int radius, QSize size)
{
    QImage glyphs(size, QImage::Format_ARGB32_Premultiplied);
    glyphs.fill(Qt::transparent);
    {
        QPainter p(&glyphs);
        p.setFont(font);
        p.setPen(Qt::black);
        p.drawText(QRect(QPoint(radius, radius), size), Qt::AlignLeft | Qt::AlignTop, text);
    }
    QImage alpha = glyphs.convertToFormat(QImage::Format_Alpha8);
    if (radius > 0)
        blurAlpha(alpha, radius);

    QImage shadow(size, QImage::Format_ARGB32_Premultiplied);
    shadow.fill(color);
    QPainter p(&shadow);
    p.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    p.drawImage(0, 0, alpha);
    return shadow;
}

void EmojiShadow::paint(QPainter* painter)
{
    if (m_text.isEmpty() || width() < 1 || height() < 1)
        return;
    painter->drawImage(0, 0, shadowImage(m_text, m_font, m_color, m_radius, size().toSize()));
}
