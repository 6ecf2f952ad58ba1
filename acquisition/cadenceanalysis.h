#pragma once

#include <QDateTime>
#include <QVector>

/// Spacing of the images of one datasource in the archive; all 0 when unknown.
struct CadenceStatistics
{
    static constexpr int notProbed = -1;

    int uniqueFrames = 0;  ///< or notProbed
    int medianSeconds = 0; ///< for an even count the upper of the two middle spacings
    int minSeconds = 0;
    int maxSeconds = 0;
};

/// How to sample a datasource, judged by the frame times that a short probe found.
namespace CadenceAnalysis {

/// Spacings of @p frameSeconds, which are ascending, unique seconds since the epoch.
CadenceStatistics analyze(const QVector<qint64> &frameSeconds);

/// Seconds between requests: the archive's own spacing where that is wider than asked for.
int stepSeconds(const CadenceStatistics &statistics, int cadenceSeconds);

/**
 * The first instant to ask for.
 *
 * Where the archive is sparser than the requested cadence and the first of @p frameSeconds lies in
 * the interval, it is that one, which keeps the requests in phase with the instrument. Otherwise
 * it is @p startUtc.
 */
QDateTime anchorUtc(const CadenceStatistics &statistics, const QVector<qint64> &frameSeconds,
                    const QDateTime &startUtc, const QDateTime &endUtc, int cadenceSeconds);

} // namespace CadenceAnalysis
