#include "acquisition/cadenceanalysis.h"

#include <algorithm>
#include <limits>

namespace {

/// Spacings between neighbours, ascending; those that do not fit into an int are left out.
QVector<int> sortedSpacings(const QVector<qint64> &frameSeconds)
{
    QVector<int> spacings;
    spacings.reserve(frameSeconds.size());
    for (int i = 1; i < frameSeconds.size(); ++i) {
        const qint64 spacing = frameSeconds.at(i) - frameSeconds.at(i - 1);
        if (spacing >= 1 && spacing <= std::numeric_limits<int>::max())
            spacings.append(static_cast<int>(spacing));
    }
    std::sort(spacings.begin(), spacings.end());
    return spacings;
}

} // namespace

CadenceStatistics CadenceAnalysis::analyze(const QVector<qint64> &frameSeconds)
{
    CadenceStatistics statistics;
    statistics.uniqueFrames = frameSeconds.size();
    const QVector<int> spacings = sortedSpacings(frameSeconds);
    if (!spacings.isEmpty()) {
        statistics.medianSeconds = spacings.at(spacings.size() / 2);
        statistics.minSeconds = spacings.first();
        statistics.maxSeconds = spacings.last();
    }
    return statistics;
}

int CadenceAnalysis::stepSeconds(const CadenceStatistics &statistics, int cadenceSeconds)
{
    return std::max(statistics.medianSeconds, cadenceSeconds);
}

QDateTime CadenceAnalysis::anchorUtc(const CadenceStatistics &statistics,
                                     const QVector<qint64> &frameSeconds, const QDateTime &startUtc,
                                     const QDateTime &endUtc, int cadenceSeconds)
{
    if (statistics.medianSeconds <= cadenceSeconds || frameSeconds.isEmpty())
        return startUtc.toUTC();
    const QDateTime earliest = QDateTime::fromSecsSinceEpoch(frameSeconds.first(), Qt::UTC);
    return earliest >= startUtc && earliest <= endUtc ? earliest : startUtc.toUTC();
}
