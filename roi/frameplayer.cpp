#include "roi/frameplayer.h"

#include <algorithm>

namespace {

constexpr int msPerSecond = 1000;

} // namespace

FramePlayer::FramePlayer(QObject *parent) : QObject(parent)
{
    m_ticking.setTimerType(Qt::PreciseTimer);
    connect(&m_ticking, &QTimer::timeout, this, &FramePlayer::tick);
}

void FramePlayer::play(int first, int last)
{
    m_first = first;
    m_last = last;
    m_clock.start();
    m_ticking.start(msPerSecond / m_fps);
    emit playingChanged(true);
}

void FramePlayer::setRate(int fps)
{
    if (isPlaying()) {
        m_first += static_cast<int>(m_clock.restart() * m_fps / msPerSecond);
        m_ticking.start(msPerSecond / fps);
    }
    m_fps = fps;
}

void FramePlayer::stop()
{
    if (!isPlaying())
        return;
    m_ticking.stop();
    emit playingChanged(false);
}

void FramePlayer::tick()
{
    const qint64 due = m_first + m_clock.elapsed() * m_fps / msPerSecond;
    emit frameDue(static_cast<int>(std::min<qint64>(due, m_last)));
    if (due >= m_last)
        stop();
}
