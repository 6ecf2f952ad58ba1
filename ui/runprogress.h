#pragma once

#include <QString>

/// How far a run has come, and how long it may still take, in words.
namespace RunProgress {

/// The counts of a run in progress.
struct Count
{
    bool isPlanned = false; ///< false while the cadences are being measured
    int done = 0;           ///< of the datasources to be measured, then of requests and films
    int total = 0;
    int films = 0;        ///< how many of the total are films; they come last
    qint64 elapsedMs = 0; ///< from the plan to the end of the last request
};

/// "37 of 162 requests, about 4 min left"; the time, from the mean, only after some requests.
QString text(const Count &count);

/// A time left, rounded up to a sensible precision: "40 s", "4 min", "2 h 10 min".
QString roundedDuration(qint64 ms);

} // namespace RunProgress
