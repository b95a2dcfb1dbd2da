#pragma once
// The frosted-glass layer. Widgets sit below every ordinary window, so what lies behind them is the
// desktop background: the layer reads that part of the wallpaper, blurs it and lays the material's
// tint over it, which gives frosted glass with or without a compositor. Where a compositor blurs
// behind windows itself (KWin), or no wallpaper can be read, it is the tint alone. Material 13 (HUD
// window) is a dark smoke; 4 (selection) a light, cool veil.
//
// The backdrop is one cached image, made again only when the wallpaper changes, a move ends, the
// size, screen or material changes, or a compositor starts or stops; never while idle. A subclass
// may paint further still layers over it (paintOver), which then cost no item and no image of
// their own. The image lives only as the scene graph's texture once that is made.
#include <QColor>
#include <QImage>
#include <QQuickItem>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

class VisualEffectView : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int material READ material WRITE setMaterial NOTIFY materialChanged)
    Q_PROPERTY(double cornerRadius READ cornerRadius WRITE setCornerRadius NOTIFY cornerRadiusChanged)

  public:
    enum Material { Selection = 4, HudWindow = 13 };
    Q_ENUM(Material)

    explicit VisualEffectView(QQuickItem* parent = nullptr);

    int material() const { return m_material; }
    void setMaterial(int m);
    double cornerRadius() const { return m_cornerRadius; }
    void setCornerRadius(double r);

    // The fill that stands for a material; unknown materials take the selection look.
    static QColor materialColor(int material);
    // The blur strength a material implies, as a Gaussian's standard deviation in points.
    static double blurSigma(int material);
    // A Gaussian blur of an opaque image, made of three box blurs per direction; edges are
    // extended, so a picture taken wider than its use by three radii blurs cleanly at its borders.
    static QImage blurred(const QImage& image, double sigma);

  signals:
    void materialChanged();
    void cornerRadiusChanged();

  protected:
    // Painted in points over the backdrop, inside the same image.
    virtual void paintOver(QPainter*, const QSizeF&) {}
    // The image is made again at the next turn of the event loop; several calls make one.
    void scheduleRefresh();

    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData*) override;
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

  private:
    void refresh();
    void settleMove();
    QRect deviceArea() const;

    int m_material = HudWindow;
    double m_cornerRadius = 0;

    QImage m_image;       // blurred wallpaper, tint and overlay, until the scene graph takes it
    QRect m_backdropArea; // where on the root it was taken
    bool m_refreshPending = false;
    bool m_imageChanged = false;
    QTimer m_moveSettle;
    QList<QMetaObject::Connection> m_windowConnections;
};
