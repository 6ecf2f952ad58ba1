#pragma once

#include <QString>

/// How far a run has come, and how long it may still take, in words.
namespace RunProgress {

/// What is counted while a run goes on.
struct Count
{
    bool isPlanned = false; ///< false while the cadences are being measured
    int done = 0;           ///< of the datasources to be measured, then of requests and films
    int total = 0;
    int films = 0;        ///< how many of the total are films; they come last
    qint64 elapsedMs = 0; ///< from the plan to the end of the last request
};

/// "37 of 162 requests, about 4 min left"; the time only after some requests, from their mean.
QString text(const Count &count);

/// A time left in as few digits as it is known in: "40 s", "4 min", "2 h 10 min"; rounded up.
QString roundedDuration(qint64 ms);

} // namespace RunProgress
