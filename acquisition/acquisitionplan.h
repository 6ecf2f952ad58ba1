#pragma once

#include "session/datasource.h"
#include "session/framerequest.h"

#include <QVector>

#include <vector>

struct AcquisitionSettings;

/// The requests of one datasource: evenly spaced, the last one not later than the end.
struct RequestSchedule
{
    DataSource source;
    qint64 firstMs = 0; ///< since the epoch
    qint64 lastMs = 0;  ///< end of the interval, itself included
    qint64 stepMs = 1;  ///< at least 1

    qint64 requestCount() const;
};

/**
 * All requests of a session, interleaved by time; those of the same instant by ascending sourceId.
 *
 * Requests are computed one by one, not stored: the next one is the earliest among the heads of the
 * schedules. Ten years at one second need no more memory than an hour, and a program that uses
 * little memory starts its curl children faster.
 */
class AcquisitionPlan final
{
public:
    AcquisitionPlan() = default;
    explicit AcquisitionPlan(QVector<RequestSchedule> schedules);

    qint64 size() const { return m_size; }
    qint64 position() const { return m_position; } ///< requests passed so far
    bool atEnd() const { return m_heads.empty(); }

    /// The request to work on; there is one unless atEnd().
    FrameRequest current() const;
    /// Passes the current request.
    void advance();

private:
    /// The next instant of one schedule.
    struct Head
    {
        qint64 timeMs;
        int sourceId;
        int schedule; // index; keeps the order among equals that of the schedules
    };
    static bool isLater(const Head &left, const Head &right);

    QVector<RequestSchedule> m_schedules;
    std::vector<Head> m_heads; // heap, the earliest in front
    qint64 m_size = 0;
    qint64 m_position = 0;
};

namespace AcquisitionPlanning {

/// Requests if every datasource were sampled at the requested cadence, which is positive.
qint64 nominalCount(const AcquisitionSettings &settings);

} // namespace AcquisitionPlanning
