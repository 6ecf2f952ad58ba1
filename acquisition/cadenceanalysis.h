#pragma once

#include <QDateTime>
#include <QVector>

/// How an archive spaces the images of one datasource; all 0 when it is not known.
struct CadenceStatistics
{
    static constexpr int notProbed = -1;

    int uniqueFrames = 0;  ///< or notProbed
    int medianSeconds = 0; ///< of an even count the upper of the two middle spacings
    int minSeconds = 0;
    int maxSeconds = 0;
};

/// What the frame times of a short look into the archive say about sampling it.
namespace CadenceAnalysis {

/// Spacings of @p frameSeconds, which are ascending, unique seconds since the epoch.
CadenceStatistics analyze(const QVector<qint64> &frameSeconds);

/// Seconds between requests: the archive's own spacing where that is wider than asked for.
int stepSeconds(const CadenceStatistics &statistics, int cadenceSeconds);

/**
 * The first instant to ask for.
 *
 * Where the archive is sparser than asked for, a start on the first of @p frameSeconds keeps the
 * requests in phase with the instrument; when that frame lies outside the interval no other one
 * is tried. Otherwise it is @p startUtc.
 */
QDateTime anchorUtc(const CadenceStatistics &statistics, const QVector<qint64> &frameSeconds,
                    const QDateTime &startUtc, const QDateTime &endUtc, int cadenceSeconds);

} // namespace CadenceAnalysis
