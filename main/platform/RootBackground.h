#pragma once
// The desktop background as wallpaper setters publish it on the X root window, and whether a
// compositing manager runs. Both are watched: a new wallpaper, or a compositor starting or
// stopping, is told once through a signal. Off X11 nothing can be read and nothing is told.
#include <QAbstractNativeEventFilter>
#include <QImage>
#include <QObject>
#include <QTimer>

class RootBackground : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

  public:
    static RootBackground& shared();

    // The background under `area` (root coordinates, device pixels): the pixels of the root pixmap
    // (_XROOTPMAP_ID, else ESETROOT_PMAP_ID) where it covers the area, the rest in their mean colour;
    // without a pixmap, the root's plain colour where some of the root itself is in sight. Null when
    // neither can be read, as where a desktop window paints the background.
    QImage grab(const QRect& area) const;
    // Whether grab() has something to give at all.
    bool available() const { return !grab(QRect(0, 0, 1, 1)).isNull(); }

    // A compositing manager owns _NET_WM_CM_S<screen>.
    bool compositing() const { return m_compositing; }
    // The compositor blurs behind windows that ask for it (KWin's blur-behind protocol).
    bool compositorBlursBehind() const { return m_blursBehind; }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

  signals:
    void backgroundChanged();
    void compositingChanged();

  private:
    RootBackground();
    void readCompositor();

    bool m_compositing = false;
    bool m_blursBehind = false;
    uint32_t m_pixmapAtoms[2] = {0, 0};
    uint32_t m_cmAtom = 0;
    uint8_t m_xfixesEvent = 0;
    // Setters write both properties, one after the other: one signal for the pair.
    QTimer m_settle;
};
