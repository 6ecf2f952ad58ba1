#pragma once

#include "simulator/sun/activeregions.h"

#include <vector>

namespace Simulator {

class LightField;
class Surface;
struct SunStyle;

/// Paints what active regions show on the surface: soft light, patches of plage, sunspots.
void paintRegions(LightField &field, const Surface &surface,
                  const std::vector<ActiveRegion> &regions, const SunStyle &style);

/// Adds the field of active regions: above 0 towards the observer.
void paintPolarities(LightField &field, const Surface &surface,
                     const std::vector<ActiveRegion> &regions);

} // namespace Simulator
