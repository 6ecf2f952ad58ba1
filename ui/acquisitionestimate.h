#pragma once

#include <QString>

class QDateTime;

/// Texts about the most that a session can yield.
namespace AcquisitionEstimate {

/**
 * A length of time in the largest unit that divides it: "45 s", "90 min", "2 h", "1 min 5 s",
 * "1 h 1 min" (seconds are dropped above an hour); "n/a" unless positive.
 */
QString formatDuration(qint64 seconds);

/// How long @p frames play, "hh:mm:ss.zzz"; "--" without a frame or a rate.
QString formatVideoDuration(qint64 frames, int fps);

/// The line about frames and film of one datasource; both ends of the interval count.
QString text(const QDateTime &startUtc, const QDateTime &endUtc, int cadenceSeconds, int fps);

} // namespace AcquisitionEstimate
