#pragma once

#include "simulator/sun/activeregions.h"

#include <vector>

namespace Simulator {

class LightField;
struct SunStyle;

/// Paints the arches of hot gas above active regions, on the disk and beyond the limb.
void paintLoops(LightField &field, const std::vector<ActiveRegion> &regions, qint64 unixTime,
                const SunStyle &style);

/// Paints filaments: dark before the disk, bright beyond the limb.
void paintFilaments(LightField &field, const std::vector<Filament> &filaments,
                    const SunStyle &style);

} // namespace Simulator
