#pragma once
// Four bars that jump at random while a track plays; they do not follow the sound.
#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QRandomGenerator>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

class MusicVisualizerModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    // The heights on screen now, eased from the previous draw towards the latest one.
    Q_PROPERTY(QList<qreal> heights READ heights NOTIFY heightsChanged)
    // Bound by the view to its visibility: ticks only while true.
    Q_PROPERTY(bool active READ active WRITE setActive NOTIFY activeChanged)

  public:
    static constexpr int barCount = 4;
    static constexpr qreal minHeight = 4;
    static constexpr qreal maxHeight = 20;
    static constexpr int tickMs = 150;
    // The easing is stepped by this model, not by a QML animation, so the window renders only these
    // frames (about 24 a second, still several per tick) instead of one per vsync.
    static constexpr int frameMs = 41;

    explicit MusicVisualizerModel(QObject* parent = nullptr);

    // Uniform on the closed range [minHeight, maxHeight].
    static qreal randomHeight(QRandomGenerator& generator);
    // In-out quadratic easing from `from` to `to`, progress in [0, 1].
    static qreal eased(qreal from, qreal to, qreal progress);

    QList<qreal> heights() const { return m_heights; }
    bool active() const { return m_active; }
    void setActive(bool active);

    // Every bar draws a new height and starts easing towards it from where it stands.
    void tick();

  signals:
    void heightsChanged();
    void activeChanged();

  private:
    void frame();

    QList<qreal> m_heights = QList<qreal>(barCount, minHeight);
    QList<qreal> m_from = m_heights;
    QList<qreal> m_targets = m_heights;
    bool m_active = false;
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_tickAt = 0;
};
