// clazy:excludeall=non-pod-global-static (that is how Google Benchmark registers a function)
#include "acquisition/acquisitionplan.h"
#include "acquisition/sessiontally.h"
#include "acquisition/sourceplan.h"
#include "session/acquisitionsettings.h"

#include <benchmark/benchmark.h>

#include <malloc.h>

namespace {

double heapBytes()
{
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

/// A session of about @p requests lookups: each datasource at a step of its own, so that their
/// requests meet in ever new order.
AcquisitionPlan plan(int requests, int sources)
{
    AcquisitionSettings settings;
    settings.startUtc = QDateTime(QDate(2024, 5, 1), QTime(0, 0), Qt::UTC);
    QVector<RequestSchedule> schedules;
    for (int sourceId = 0; sourceId < sources; ++sourceId) {
        settings.cadenceSeconds = 36 + sourceId % 7;
        settings.endUtc = settings.startUtc.addSecs(static_cast<qint64>(requests / sources - 1) *
                                                    settings.cadenceSeconds);
        const DataSource source = {sourceId, QStringLiteral("AIA 171"),
                                   QStringLiteral("SDO/AIA/171")};
        schedules.append(
            SourcePlanning::plan(source, PreflightMode::DirectDenseSource, {}, settings).schedule);
    }
    return AcquisitionPlan(schedules);
}

/// Builds, merges and numbers range(0) requests of range(1) datasources; counters per request.
void walkPlan(benchmark::State &state)
{
    const int requests = static_cast<int>(state.range(0));
    const double before = heapBytes();
    double bytes = 0.0;
    qint64 walked = 0;
    while (state.KeepRunning()) {
        AcquisitionPlan walk = plan(requests, static_cast<int>(state.range(1)));
        for (; !walk.atEnd(); walk.advance(), ++walked)
            benchmark::DoNotOptimize(walk.current());
        bytes = static_cast<double>(sizeof walk) + heapBytes() - before;
    }
    const auto perRun = static_cast<double>(walked) / static_cast<double>(state.iterations());
    state.counters["bytes"] = bytes / perRun;
    state.counters["time"] = benchmark::Counter(
        perRun, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(walkPlan)
    ->ArgsProduct({{10000, 100000, 1000000}, {1, 8, 36}})
    ->Unit(benchmark::kMillisecond);

} // namespace
