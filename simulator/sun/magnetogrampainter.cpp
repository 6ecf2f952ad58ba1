#include "simulator/sun/magnetogrampainter.h"

#include "simulator/sun/lightfield.h"
#include "simulator/sun/regionpainter.h"
#include "simulator/sun/surfaceview.h"

#include <algorithm>

namespace Simulator {

namespace {

/// Flux in the borders of cells; whole regions of them share a sign.
float networkFlux(SurfaceTexels texels)
{
    const float network = float(channelOf(texels, NetworkChannel)) / 255.0F;
    const float threads = float(channelOf(texels, ThreadChannel)) / 255.0F;
    const float region = float(channelOf(texels, RegionChannel)) / 255.0F - 0.5F;
    const float cloud = float(channelOf(texels, CloudChannel)) / 255.0F - 0.5F;
    const float amount = std::max(network * (0.6F + 0.5F * threads) - 0.5F, 0.0F);
    return amount * std::clamp(14.0F * (region + 0.5F * cloud), -1.0F, 1.0F) * 3.0F;
}

} // namespace

void paintMagnetogram(LightField &field, const SurfaceView &surface,
                      const std::vector<ActiveRegion> &regions)
{
    const LightField::Box disk = field.boxAround(0.0F, 0.0F, 1.0F);
    field.visitDisk(disk, [&surface](float &light, const Vector3 &seen) {
        light = seen.z * networkFlux(surface.texelsAt(surface.toSun(seen)));
    });
    paintPolarities(field, surface, regions, true);
    field.visitDisk(disk, [](float &light, const Vector3 &) {
        light = std::clamp(0.5F + 0.5F * light, 0.02F, 1.0F);
    });
}

} // namespace Simulator
