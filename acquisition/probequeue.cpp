#include "acquisition/probequeue.h"

#include <algorithm>
#include <utility>

bool ProbeWindow::matches(int sourceId, const QDateTime &start, const QDateTime &end) const
{
    return source.sourceId == sourceId && startUtc == start && endUtc == end;
}

ProbeQueue::ProbeQueue(QVector<ProbeWindow> windows) : m_windows(std::move(windows)) {}

ProbeWindow ProbeQueue::take(int worker)
{
    m_busy.insert(worker, m_next);
    return m_windows.at(m_next++);
}

std::optional<ProbeWindow> ProbeQueue::release(int worker)
{
    const auto busy = m_busy.constFind(worker);
    if (busy == m_busy.cend())
        return std::nullopt;
    const ProbeWindow window = m_windows.at(*busy);
    m_busy.erase(busy);
    return window;
}

void ProbeQueue::addFrames(int sourceId, const QVector<QDateTime> &framesUtc)
{
    QVector<qint64> &seconds = m_frameSeconds[sourceId];
    seconds.reserve(seconds.size() + framesUtc.size());
    for (const QDateTime &frameUtc : framesUtc) {
        if (frameUtc.isValid())
            seconds.append(frameUtc.toSecsSinceEpoch());
    }
    std::sort(seconds.begin(), seconds.end());
    seconds.erase(std::unique(seconds.begin(), seconds.end()), seconds.end());
}
