#include "MusicVisualizerModel.h"

MusicVisualizerModel::MusicVisualizerModel(QObject* parent) : QObject(parent)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(frameMs);
    connect(&m_timer, &QTimer::timeout, this, &MusicVisualizerModel::frame);
    m_clock.start();
}

qreal MusicVisualizerModel::randomHeight(QRandomGenerator& generator)
{
    // 2^53 + 1 equally likely steps from the lower to the upper end, both included.
    constexpr quint64 steps = quint64(1) << 53;
    const quint64 k = generator.bounded(steps + 1);
    return minHeight + (maxHeight - minHeight) * (double(k) / double(steps));
}

qreal MusicVisualizerModel::eased(qreal from, qreal to, qreal progress)
{
    const qreal t = std::clamp(progress, 0.0, 1.0);
    const qreal e = t < 0.5 ? 2 * t * t : 1 - 2 * (1 - t) * (1 - t);
    return from + (to - from) * e;
}

void MusicVisualizerModel::setActive(bool active)
{
    m_active = active;
    if (active && !m_timer.isActive()) {
        tick();
        m_timer.start();
    } else if (!active) {
        m_timer.stop();
    }
    emit activeChanged();
}

void MusicVisualizerModel::tick()
{
    m_from = m_heights;
    for (qreal& height : m_targets)
        height = randomHeight(*QRandomGenerator::global());
    m_tickAt = m_clock.elapsed();
}

void MusicVisualizerModel::frame()
{
    // Ticks are kept on a 0.15 s beat from the clock, whatever the frame interval; a late frame
    // first lands the bars where the previous tick sent them.
    const qint64 now = m_clock.elapsed();
    if (now - m_tickAt >= tickMs) {
        const qint64 late = (now - m_tickAt) % tickMs;
        m_heights = m_targets;
        tick();
        m_tickAt = now - late;
    }
    for (int i = 0; i < barCount; ++i)
        m_heights[i] = eased(m_from[i], m_targets[i], qreal(now - m_tickAt) / tickMs);
    emit heightsChanged();
}
