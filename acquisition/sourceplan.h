#pragma once

#include "acquisition/acquisitionplan.h"
#include "acquisition/cadenceanalysis.h"

enum class PreflightMode;

/// How one datasource is sampled, and the log line that says so.
struct SourcePlan
{
    RequestSchedule schedule;
    CadenceStatistics statistics;
    QString logLine;
};

namespace SourcePlanning {

/**
 * The plan of one datasource.
 *
 * @param frameSeconds  what its probe found: ascending, unique seconds since the epoch; used only
 *                      if @p mode is QuickProbe
 */
SourcePlan plan(const DataSource &source, PreflightMode mode, const QVector<qint64> &frameSeconds,
                const AcquisitionSettings &settings);

} // namespace SourcePlanning
