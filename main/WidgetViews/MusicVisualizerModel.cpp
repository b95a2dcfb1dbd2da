#include "MusicVisualizerModel.h"

MusicVisualizerModel::MusicVisualizerModel(QObject* parent) : QObject(parent)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(tickMs);
    connect(&m_timer, &QTimer::timeout, this, &MusicVisualizerModel::tick);
}

qreal MusicVisualizerModel::randomHeight(QRandomGenerator& generator)
{
    // 2^53 + 1 equally likely steps from the lower to the upper end, both included.
    constexpr quint64 steps = quint64(1) << 53;
    const quint64 k = generator.bounded(steps + 1);
    return minHeight + (maxHeight - minHeight) * (double(k) / double(steps));
}

void MusicVisualizerModel::setActive(bool active)
{
    m_active = active;
    if (active)
        m_timer.start();
    else
        m_timer.stop();
    emit activeChanged();
}

void MusicVisualizerModel::tick()
{
    for (qreal& height : m_heights)
        height = randomHeight(*QRandomGenerator::global());
    emit heightsChanged();
}
