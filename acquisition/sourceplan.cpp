#include "acquisition/sourceplan.h"

#include "acquisition/acquisitionlog.h"
#include "acquisition/sessiontally.h"
#include "session/acquisitionsettings.h"

namespace {

RequestSchedule schedule(const DataSource &source, const QDateTime &firstUtc, int stepSeconds,
                         const AcquisitionSettings &settings)
{
    return {source, firstUtc.toMSecsSinceEpoch(), settings.endUtc.toMSecsSinceEpoch(),
            static_cast<qint64>(stepSeconds) * 1000};
}

/// At the requested cadence from the start of the interval on.
RequestSchedule regularSchedule(const DataSource &source, const AcquisitionSettings &settings)
{
    return schedule(source, settings.startUtc, settings.cadenceSeconds, settings);
}

SourcePlan planDirectly(const DataSource &source, const AcquisitionSettings &settings)
{
    const int cadence = settings.cadenceSeconds;
    return {regularSchedule(source, settings),
            {CadenceStatistics::notProbed, cadence, cadence, cadence},
            AcquisitionLog::plannedDirectly(source, cadence)};
}

SourcePlan planWithoutProbe(const DataSource &source, const AcquisitionSettings &settings)
{
    return {regularSchedule(source, settings), CadenceStatistics(),
            AcquisitionLog::plannedWithoutProbe(source, settings.cadenceSeconds)};
}

SourcePlan planByProbe(const DataSource &source, const QVector<qint64> &frameSeconds,
                       const AcquisitionSettings &settings)
{
    const CadenceStatistics statistics = CadenceAnalysis::analyze(frameSeconds);
    const int step = CadenceAnalysis::stepSeconds(statistics, settings.cadenceSeconds);
    const QDateTime firstUtc = CadenceAnalysis::anchorUtc(
        statistics, frameSeconds, settings.startUtc, settings.endUtc, settings.cadenceSeconds);
    return {schedule(source, firstUtc, step, settings), statistics,
            AcquisitionLog::plannedByProbe(source, statistics, step)};
}

} // namespace

SourcePlan SourcePlanning::plan(const DataSource &source, PreflightMode mode,
                                const QVector<qint64> &frameSeconds,
                                const AcquisitionSettings &settings)
{
    switch (mode) {
    case PreflightMode::DirectDenseSource:
        return planDirectly(source, settings);
    case PreflightMode::Fallback:
        return planWithoutProbe(source, settings);
    case PreflightMode::QuickProbe:
        break;
    }
    return planByProbe(source, frameSeconds, settings);
}
