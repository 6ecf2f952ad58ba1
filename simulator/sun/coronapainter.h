#pragma once

#include "simulator/sun/activeregions.h"

#include <vector>

namespace Simulator {

class LightField;
class Surface;
struct SunStyle;

/// Paints the glow beyond the limb, which is brighter above bright parts of the limb.
void paintCorona(LightField &field, const Surface &surface,
                 const std::vector<ActiveRegion> &regions, const SunStyle &style);

} // namespace Simulator
