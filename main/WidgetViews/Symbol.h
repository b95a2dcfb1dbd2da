#pragma once
// A named icon from the app's own symbol set, drawn at a point size in one colour, as large as a
// glyph of a font at that size. The shipped SVGs are black; the tint replaces their colour and keeps
// their coverage.
#include <QColor>
#include <QIcon>
#include <QImage>
#include <QQuickPaintedItem>
#include <QString>
#include <QtQml/qqmlregistration.h>

class Symbol : public QQuickPaintedItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(Symbol)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(qreal size READ pointSize WRITE setPointSize NOTIFY sizeChanged)

  public:
    explicit Symbol(QQuickItem* parent = nullptr);

    QString name() const { return m_name; }
    void setName(const QString& name);
    QColor color() const { return m_color; }
    void setColor(const QColor& color);
    // Named apart from QQuickItem::size(), which is the item's geometry.
    qreal pointSize() const { return m_size; }
    void setPointSize(qreal size);

    // The set is drawn on a grid of 24 units that spans 1.4 em, so a symbol at N points is as large
    // as a glyph of an N-point font: a full circle (20 units) is 1.17 N across, a symbol's usual
    // height. A wide glyph (the transport arrows) has a wider grid, never a smaller drawing.
    static constexpr qreal emPerGrid = 1.4;
    static constexpr qreal gridUnits = 24;
    // The glyph's box at a point size: its grid, scaled by that rule.
    static QSizeF glyphSize(const QString& name, qreal pointSize);

    static bool exists(const QString& name);
    static QString resourcePath(const QString& name);
    // The glyph drawn to fill `box` logical pixels (its own proportions kept, centred), tinted; null
    // when the name is unknown.
    static QImage tinted(const QString& name, const QColor& color, QSizeF box, qreal devicePixelRatio = 1);
    static QImage tinted(const QString& name, const QColor& color, qreal side, qreal devicePixelRatio = 1)
    {
        return tinted(name, color, QSizeF(side, side), devicePixelRatio);
    }
    // For surfaces outside QML (the tray): a px-sized icon with a sharp double-density version.
    static QIcon icon(const QString& name, const QColor& color, int px);

    void paint(QPainter* painter) override;

  signals:
    void nameChanged();
    void colorChanged();
    void sizeChanged();

  private:
    void invalidate();
    void updateImplicitSize();

    QString m_name;
    QColor m_color = Qt::white;
    qreal m_size = 16;
    QImage m_cache;
};
