#pragma once
// The glass frame's still layers (frosted backdrop, tint, sheen, glow, border), each in the
// continuous-corner shape, drawn together into the backdrop's one image; and the two themes' numbers.
#include "VisualEffectView.h"

#include <QColor>
#include <QtQml/qqmlregistration.h>
#include <array>

struct GlassTheme {
    int material;
    std::array<QColor, 3> tint; // top-leading to bottom-trailing
    double glowOpacity;

    // Only "opaque" is compared; any other value is the transparent look.
    static GlassTheme forName(const QString& theme);
};

class GlassFrame : public VisualEffectView {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString theme READ theme WRITE setTheme NOTIFY changed)
    Q_PROPERTY(QColor glowColor READ glowColor WRITE setGlowColor NOTIFY changed)
    // The glow layer is drawn at all: not while the colour is clear.
    Q_PROPERTY(bool glowing READ glowing NOTIFY changed)

  public:
    static constexpr double radius = 28.0;
    static constexpr double glowRadius = 110.0;

    explicit GlassFrame(QQuickItem* parent = nullptr);

    QString theme() const { return m_theme; }
    void setTheme(const QString& t);
    QColor glowColor() const { return m_glowColor; }
    void setGlowColor(const QColor& c);
    bool glowing() const { return m_glowColor.alpha() > 0; }

  signals:
    void changed();

  protected:
    void paintOver(QPainter* painter, const QSizeF& size) override;

  private:
    QString m_theme = "transparent";
    QColor m_glowColor = Qt::transparent;
};
