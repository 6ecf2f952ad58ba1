#pragma once

#include "session/datasource.h"

#include <QDateTime>
#include <QHash>
#include <QVector>

#include <optional>

/// The part of the archive in which the cadence of one datasource is measured.
struct ProbeWindow
{
    DataSource source;
    QDateTime startUtc;
    QDateTime endUtc;

    /// Whether an answer to these arguments is an answer to this window.
    bool matches(int sourceId, const QDateTime &start, const QDateTime &end) const;
};

/**
 * The cadence probes that are still to be sent, those in flight, and the frame times received.
 *
 * Workers are numbers; an answer is identified by its worker, never by the order of arrival.
 */
class ProbeQueue final
{
public:
    ProbeQueue() = default;
    explicit ProbeQueue(QVector<ProbeWindow> windows);

    int size() const { return m_windows.size(); }
    bool isEmpty() const { return m_windows.isEmpty(); }
    int completed() const { return m_completed; }
    int taken() const { return m_next; } ///< also the 1-based number of the window taken last
    bool hasNext() const { return m_next < m_windows.size(); }
    bool isDone() const { return m_completed == m_windows.size(); }
    bool isBusy(int worker) const { return m_busy.contains(worker); }

    /// Hands the next window to an idle worker; there is one while hasNext().
    ProbeWindow take(int worker);
    /// Frees a worker and returns its window; nothing when the worker was idle.
    std::optional<ProbeWindow> release(int worker);
    /// Counts a window whose answer has been dealt with.
    void complete() { ++m_completed; }

    /// Adds an answer's frame times; invalid ones are left out, repeated ones are kept once.
    void addFrames(int sourceId, const QVector<QDateTime> &framesUtc);
    /// Ascending, unique seconds since the epoch.
    QVector<qint64> frameSeconds(int sourceId) const { return m_frameSeconds.value(sourceId); }

private:
    QVector<ProbeWindow> m_windows;
    QHash<int, int> m_busy; // worker to window
    QHash<int, QVector<qint64>> m_frameSeconds;
    int m_next = 0;
    int m_completed = 0;
};
