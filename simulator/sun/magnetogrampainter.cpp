#include "simulator/sun/magnetogrampainter.h"

#include "simulator/sun/lightfield.h"
#include "simulator/sun/regionpainter.h"
#include "simulator/sun/surface.h"

#include <algorithm>

namespace Simulator {

namespace {

/// Flux in the borders of cells; whole regions of them share a sign.
float networkFlux(const Texel &texel)
{
    const float amount =
        std::max(texel.network * (0.6F + 0.5F * texel.threads) - 0.5F, 0.0F) * 3.0F;
    const float sign = 14.0F * (texel.region - 0.5F + 0.5F * (texel.cloud - 0.5F));
    return amount * std::clamp(sign, -1.0F, 1.0F);
}

} // namespace

void paintMagnetogram(LightField &field, const Surface &surface,
                      const std::vector<ActiveRegion> &regions)
{
    const LightField::Box disk = field.boxAround(0.0F, 0.0F, 1.0F);
    field.visitDisk(disk, [&surface](float &light, const Vector3 &point) {
        light = point.z * networkFlux(surface.texelAt(point));
    });
    paintPolarities(field, surface, regions);
    field.visitDisk(disk, [](float &light, const Vector3 &) {
        light = std::clamp(0.5F + 0.5F * light, 0.02F, 1.0F);
    });
}

} // namespace Simulator
