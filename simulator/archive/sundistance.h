#pragma once

#include <QtGlobal>

namespace Simulator {

struct ArchiveSource;

/// Distance of a datasource's telescope from the Sun in astronomical units; 1 for those that do not
/// stay with the Earth.
double sunDistanceAu(const ArchiveSource &source, qint64 unixTime);

} // namespace Simulator
