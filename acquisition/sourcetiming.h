#pragma once

#include <QString>

struct AcquisitionSettings;
struct DataSource;

/// How a datasource is sampled and how exactly its images must meet the requested time.
enum class SourceTimingProfile { Aia, Suvi, Default };

namespace SourceTiming {

/// "AIA", "SUVI" or "DEFAULT", as written to logs and descriptors.
QString toText(SourceTimingProfile profile);

/// Judged by nickname and catalog path in any letter case; SUVI goes before AIA.
SourceTimingProfile profileOf(const DataSource &source);

/// Dense archives are sampled at the requested cadence, without a probe.
bool isDense(const DataSource &source);

/**
 * Seconds by which an image of @p source may miss the requested time.
 *
 * AIA and SUVI have tolerances of their own in sys/orvik.ini, which is read at each call, unless
 * the user has switched the profiles off.
 */
int toleranceSeconds(const DataSource &source, const AcquisitionSettings &settings);

} // namespace SourceTiming
