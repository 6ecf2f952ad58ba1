#include "simulator/sun/regionpainter.h"

#include "simulator/hash.h"
#include "simulator/sun/lightfield.h"
#include "simulator/sun/sunstyle.h"
#include "simulator/sun/surfaceview.h"

#include <algorithm>
#include <cmath>

namespace Simulator {

namespace {

/// A point near a region, in units of its size.
struct Local
{
    float along = 0.0F;
    float across = 0.0F;
    SurfaceTexels patches = 0; ///< texture that moves with the region
};

/// Calls @p visit(pixel, local, z) for each pixel of the disk within @p reach sizes of a region.
template<typename Visit>
void visitPixels(LightField &field, const SurfaceView &surface, const ActiveRegion &region,
                 float reach, const Visit &visit)
{
    const Vector3 seen = surface.fromSun(region.centre);
    if (seen.z < -reach * region.size)
        return;
    const float inverse = 1.0F / region.size;
    const float limit = reach * reach * region.size * region.size;
    const float shift = float(chance(region.seed, 90));
    const LightField::Box box = field.boxAround(seen.x, seen.y, reach * region.size);
    field.visitDisk(box, [&](float &light, const Vector3 &point) {
        const Vector3 away = surface.toSun(point) - region.centre;
        Local local{dot(away, region.along), dot(away, region.across), 0};
        if (local.along * local.along + local.across * local.across > limit)
            return;
        local.patches =
            surface.map().detailAt(shift + local.along * 0.3F, shift + local.across * 0.9F, 2.0F);
        local.along *= inverse;
        local.across *= inverse;
        visit(light, local, point.z);
    });
}

/// 1 in the middle of a lobe to 0 at @p wide sizes from it.
float lobe(const Local &local, float along, float across, float wide)
{
    const float a = (local.along - along) / wide;
    const float c = (local.across - across) / wide;
    const float room = 1.0F - a * a - c * c;
    return room > 0.0F ? room * room : 0.0F;
}

float share(SurfaceTexels texels, SurfaceChannel channel)
{
    return float(channelOf(texels, channel)) / 255.0F;
}

/// 1 where a patch of the wide texture lies, 0 beside it: no region ends in an ellipse.
float patchAt(const Local &local)
{
    return std::clamp(4.0F * (share(local.patches, CloudChannel) - 0.36F), 0.0F, 1.0F);
}

/// Patchy light of both polarities, brightest where threads of the texture cross.
float plageAt(const Local &local)
{
    const float envelope = lobe(local, 0.75F, -0.1F, 1.35F) + lobe(local, -0.8F, 0.15F, 1.9F);
    const float threads = share(local.patches, ThreadChannel);
    const float network = share(local.patches, NetworkChannel);
    return envelope * (0.08F + patchAt(local)) *
           (0.1F + 1.5F * threads * threads + 1.4F * std::max(network - 0.45F, 0.0F));
}

struct Sunspot
{
    float along = 0.0F;
    float across = 0.0F;
    float radius = 0.0F; ///< of the penumbra, in sizes of the region
};

/// A large leading spot and a trail of smaller ones.
std::vector<Sunspot> spotsOf(const ActiveRegion &region)
{
    std::vector<Sunspot> spots;
    const int count = int(1.0F + 6.0F * region.strength);
    for (int spot = 0; spot < count; ++spot) {
        const auto draw = [&region, spot](quint64 which) {
            return float(chance(region.seed, 100 + quint64(spot) * 8 + which)) - 0.5F;
        };
        const bool leads = spot % 3 == 0;
        const float radius =
            (spot == 0 ? 0.44F : 0.25F + 0.16F * draw(0)) * std::sqrt(region.strength);
        spots.push_back({(leads ? 0.75F : -0.75F) + (spot == 0 ? 0.0F : 0.8F * draw(1)),
                         0.7F * draw(2), radius});
    }
    return spots;
}

void paintSpots(LightField &field, const SurfaceView &surface, const ActiveRegion &region,
                float depth)
{
    const std::vector<Sunspot> spots = spotsOf(region);
    visitPixels(field, surface, region, 2.2F, [&](float &light, const Local &local, float) {
        for (const Sunspot &spot : spots) {
            const float a = local.along - spot.along;
            const float c = local.across - spot.across;
            const float ragged = 0.8F + 0.4F * share(local.patches, CloudChannel);
            const float distance = std::sqrt(a * a + c * c) / (spot.radius * ragged);
            const float penumbra = std::clamp((1.0F - distance) * 5.0F, 0.0F, 1.0F);
            const float umbra = std::clamp((0.5F - distance) * 7.0F, 0.0F, 1.0F);
            light *= 1.0F - depth * (0.28F * penumbra + 0.55F * umbra);
        }
    });
}

} // namespace

void paintRegions(LightField &field, const SurfaceView &surface,
                  const std::vector<ActiveRegion> &regions, const SunStyle &style)
{
    for (const ActiveRegion &region : regions) {
        const float flare = 1.0F + 4.0F * style.flares * region.flare;
        const float glow = style.glow * region.strength * std::sqrt(flare);
        const float plage = style.plage * region.strength;
        const float kernel = style.flares * style.plage * region.flare;
        visitPixels(field, surface, region, 3.4F, [&](float &light, const Local &local, float z) {
            // White light shows the same patches only near the limb, as faculae.
            const float seen = style.spots >= 1.0F ? 3.0F * (1.0F - z) : 1.0F;
            light += glow * lobe(local, 0.0F, 0.0F, 3.4F) * lobe(local, 0.0F, 0.0F, 3.4F) +
                     plage * seen * plageAt(local) + kernel * lobe(local, 0.1F, 0.0F, 0.7F);
        });
        if (style.spots > 0.0F)
            paintSpots(field, surface, region, style.spots);
    }
}

void paintPolarities(LightField &field, const SurfaceView &surface,
                     const std::vector<ActiveRegion> &regions, bool northLeadsPositive)
{
    for (const ActiveRegion &region : regions) {
        const std::vector<Sunspot> spots = spotsOf(region);
        const float sign = region.northern == northLeadsPositive ? 1.0F : -1.0F;
        const float strength = sign * region.strength;
        visitPixels(field, surface, region, 3.0F, [&](float &light, const Local &local, float z) {
            const float clumps =
                share(local.patches, NetworkChannel) * (0.4F + share(local.patches, ThreadChannel));
            const float ragged = std::max(clumps - 0.33F, 0.0F) * 6.0F;
            float flux = ragged * (lobe(local, 0.8F, -0.1F, 1.2F) - lobe(local, -0.9F, 0.2F, 1.7F));
            for (const Sunspot &spot : spots)
                flux += (spot.along > 0.0F ? 3.0F : -3.0F) *
                        lobe(local, spot.along, spot.across, spot.radius);
            light += strength * flux * (0.3F + 0.7F * z);
        });
    }
}

} // namespace Simulator
