#pragma once
// Four bars that jump at random while a track plays; they do not follow the sound.
#include <QList>
#include <QObject>
#include <QRandomGenerator>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

class MusicVisualizerModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QList<qreal> heights READ heights NOTIFY heightsChanged)
    // Bound by the view to its visibility: ticks only while true.
    Q_PROPERTY(bool active READ active WRITE setActive NOTIFY activeChanged)

public:
    static constexpr int barCount = 4;
    static constexpr qreal minHeight = 4;
    static constexpr qreal maxHeight = 20;
    static constexpr int tickMs = 150;

    explicit MusicVisualizerModel(QObject* parent = nullptr);

    // Uniform on the closed range [minHeight, maxHeight].
    static qreal randomHeight(QRandomGenerator& generator);

    QList<qreal> heights() const { return m_heights; }
    bool active() const { return m_active; }
    void setActive(bool active);
    bool isTicking() const { return m_timer.isActive(); }

    // Every bar draws a new height.
    void tick();

signals:
    void heightsChanged();
    void activeChanged();

private:
    QList<qreal> m_heights = QList<qreal>(barCount, minHeight);
    bool m_active = false;
    QTimer m_timer;
};
