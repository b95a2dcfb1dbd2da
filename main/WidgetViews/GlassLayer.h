#pragma once
// The painted layers of the glass frame (tint, sheen, glow, border), each in the continuous-corner
// shape, and the two themes' numbers.
#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>
#include <array>

struct GlassTheme {
    int material;
    std::array<QColor, 3> tint; // top-leading to bottom-trailing
    double glowOpacity;

    // Only "opaque" is compared; any other value is the transparent look.
    static GlassTheme forName(const QString& theme);
};

class GlassLayer : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(Kind kind READ kind WRITE setKind NOTIFY changed)
    Q_PROPERTY(QString theme READ theme WRITE setTheme NOTIFY changed)
    Q_PROPERTY(QColor glowColor READ glowColor WRITE setGlowColor NOTIFY changed)
    Q_PROPERTY(int material READ material NOTIFY changed)

public:
    enum Kind { Tint, Sheen, Glow, Border };
    Q_ENUM(Kind)

    static constexpr double cornerRadius = 28.0;
    static constexpr double glowRadius = 110.0;

    explicit GlassLayer(QQuickItem* parent = nullptr);

    Kind kind() const { return m_kind; }
    void setKind(Kind k);
    QString theme() const { return m_theme; }
    void setTheme(const QString& t);
    QColor glowColor() const { return m_glowColor; }
    void setGlowColor(const QColor& c);
    int material() const { return GlassTheme::forName(m_theme).material; }

    void paint(QPainter* painter) override;

signals:
    void changed();

private:
    Kind m_kind = Tint;
    QString m_theme = "transparent";
    QColor m_glowColor = Qt::transparent;
};
