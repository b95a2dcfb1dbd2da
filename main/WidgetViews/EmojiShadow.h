#pragma once
// The soft drop shadow of a text, painted once into a texture: the glyphs' coverage in one colour,
// blurred. Scene-graph effects are off the table with the software backend, and colour emoji
// ignore a text colour, so a darker copy of the text can't stand in for it.
#include <QColor>
#include <QFont>
#include <QImage>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

class EmojiShadow : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY changed)
    Q_PROPERTY(QFont font READ font WRITE setFont NOTIFY changed)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY changed)
    // How far the blur reaches; the item should extend this far beyond the text on every side.
    Q_PROPERTY(int radius READ radius WRITE setRadius NOTIFY changed)

  public:
    explicit EmojiShadow(QQuickItem* parent = nullptr);

    QString text() const { return m_text; }
    void setText(const QString& t);
    QFont font() const { return m_font; }
    void setFont(const QFont& f);
    QColor color() const { return m_color; }
    void setColor(const QColor& c);
    int radius() const { return m_radius; }
    void setRadius(int r);

    // The shadow of `text` drawn with its top left at (radius, radius) in a box of `size`.
    static QImage shadowImage(const QString& text, const QFont& font, const QColor& color, int radius, QSize size);
    void paint(QPainter* painter) override;

  signals:
    void changed();

  private:
    void changeAndRepaint();

    QString m_text;
    QFont m_font;
    QColor m_color = QColor(0, 0, 0, 77);
    int m_radius = 6;
};
