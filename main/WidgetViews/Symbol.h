#pragma once
// A named icon from the app's own symbol set, drawn at a point size in one colour, like a glyph of
// an icon font. The shipped SVGs are black; the tint replaces their colour and keeps their coverage.
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

    static bool exists(const QString& name);
    static QString resourcePath(const QString& name);
    // The glyph fitted into a square of `side` logical pixels, tinted; null when the name is unknown.
    static QImage tinted(const QString& name, const QColor& color, qreal side, qreal devicePixelRatio = 1);
    // For surfaces outside QML (the tray): a px-sized icon with a sharp double-density version.
    static QIcon icon(const QString& name, const QColor& color, int px);

    void paint(QPainter* painter) override;

  signals:
    void nameChanged();
    void colorChanged();
    void sizeChanged();

  private:
    void invalidate();

    QString m_name;
    QColor m_color = Qt::white;
    qreal m_size = 16;
    QImage m_cache;
};
