#pragma once
// The frosted-glass layer. Nothing behind the window can be sampled from here, so the material is
// carried as a tinted translucent fill (and, on KDE, the compositor is asked to blur behind the
// window). Material 13 (HUD window) is a dark smoke; 4 (selection) a light, cool veil.
#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

class VisualEffectView : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int material READ material WRITE setMaterial NOTIFY materialChanged)
    Q_PROPERTY(int blendingMode READ blendingMode WRITE setBlendingMode NOTIFY blendingModeChanged)
    Q_PROPERTY(int state READ state WRITE setState NOTIFY stateChanged)
    Q_PROPERTY(double cornerRadius READ cornerRadius WRITE setCornerRadius NOTIFY cornerRadiusChanged)

public:
    enum Material { Selection = 4, HudWindow = 13 };
    Q_ENUM(Material)

    explicit VisualEffectView(QQuickItem* parent = nullptr);

    int material() const { return m_material; }
    void setMaterial(int m);
    int blendingMode() const { return m_blendingMode; }
    void setBlendingMode(int m);
    int state() const { return m_state; }
    void setState(int s);
    double cornerRadius() const { return m_cornerRadius; }
    void setCornerRadius(double r);

    // The fill that stands for a material; unknown materials take the selection look.
    static QColor materialColor(int material);

    void paint(QPainter* painter) override;

signals:
    void materialChanged();
    void blendingModeChanged();
    void stateChanged();
    void cornerRadiusChanged();

private:
    int m_material = HudWindow;
    int m_blendingMode = 0;
    int m_state = 1;
    double m_cornerRadius = 0;
};
