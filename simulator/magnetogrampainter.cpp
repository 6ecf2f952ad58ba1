#include "simulator/magnetogrampainter.h"

#include "simulator/lightfield.h"
#include "simulator/regionpainter.h"
#include "simulator/surfaceview.h"

#include <algorithm>
#include <cmath>

namespace Simulator {

namespace {

/// Calls @p visit(pixel, x, y, z) for each pixel of the disk.
template<typename Visit>
void visitDisk(LightField &field, const Visit &visit)
{
    for (int line = 0; line < field.heightPx(); ++line) {
        const float y = field.yOf(line);
        float *light = field.row(line);
        for (int column = 0; column < field.widthPx(); ++column) {
            const float x = field.xOf(column);
            const float square = 1.0F - x * x - y * y;
            if (square > 0.0F)
                visit(light[column], Vector3{x, y, std::sqrt(square)});
        }
    }
}

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
    visitDisk(field, [&surface](float &light, const Vector3 &seen) {
        light = seen.z * networkFlux(surface.texelsAt(surface.toSun(seen)));
    });
    paintPolarities(field, surface, regions, true);
    visitDisk(field, [](float &light, const Vector3 &) {
        light = std::clamp(0.5F + 0.5F * light, 0.02F, 1.0F);
    });
}

} // namespace Simulator
