#pragma once

#include "simulator/sun/activeregions.h"

#include <vector>

namespace Simulator {

class LightField;
class Surface;

/// Paints the magnetic field along the line of sight: 0.5 for none, 0 beyond the limb.
void paintMagnetogram(LightField &field, const Surface &surface,
                      const std::vector<ActiveRegion> &regions);

} // namespace Simulator
