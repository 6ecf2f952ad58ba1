#include "simulator/sun/regionpainter.h"

#include "simulator/hash.h"
#include "simulator/sun/lightfield.h"
#include "simulator/sun/look.h"
#include "simulator/sun/surface.h"

#include <algorithm>
#include <cmath>

namespace Simulator {

namespace {

/// A point near a region, in units of its size.
struct Local
{
    float along = 0.0F;
    float across = 0.0F;
};

/// Texture that moves with a region.
Texel patchesAt(const Surface &surface, const ActiveRegion &region, const Local &local)
{
    return surface.patchAt(Draw(region.seed)(90), local.along * region.size,
                           local.across * region.size);
}

/// Calls @p visit(pixel, local, z) for each pixel of the disk within @p reach sizes of a region.
template<typename Visit>
void visitPixels(LightField &field, const ActiveRegion &region, float reach, const Visit &visit)
{
    const Vector3 &centre = region.centre;
    if (centre.z < -reach * region.size)
        return;
    const float inverse = 1.0F / region.size;
    const float limit = reach * region.size * reach * region.size;
    const LightField::Box box = field.boxAround(centre.x, centre.y, reach * region.size);
    field.visitDisk(box, [&](float &light, const Vector3 &point) {
        const Vector3 away = point - centre;
        const float along = dot(away, region.along);
        const float across = dot(away, region.across);
        if (along * along + across * across < limit)
            visit(light, Local{along * inverse, across * inverse}, point.z);
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

/// Patchy light of both polarities, brightest where threads of the texture cross.
float plageAt(const Surface &surface, const ActiveRegion &region, const Local &local)
{
    const float envelope = lobe(local, 0.75F, -0.1F, 1.35F) + lobe(local, -0.8F, 0.15F, 1.9F);
    if (envelope <= 0.0F)
        return 0.0F;
    const Texel texel = patchesAt(surface, region, local);
    // No region ends in an ellipse.
    const float patch = std::clamp(4.0F * (texel.cloud - 0.36F), 0.0F, 1.0F);
    return envelope * (0.08F + patch) *
           (0.1F + 1.5F * texel.threads * texel.threads +
            1.4F * std::max(texel.network - 0.45F, 0.0F));
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
    const int count = static_cast<int>(1.0F + 6.0F * region.strength);
    for (int spot = 0; spot < count; ++spot) {
        const Draw draw(hashOf(region.seed, 100 + static_cast<quint64>(spot)));
        const float side = spot % 3 == 0 ? 0.75F : -0.75F;
        const float size = spot == 0 ? 0.44F : 0.17F + 0.16F * draw(0);
        spots.push_back({side + (spot == 0 ? 0.0F : 0.8F * (draw(1) - 0.5F)),
                         0.7F * (draw(2) - 0.5F), size * std::sqrt(region.strength)});
    }
    return spots;
}

void paintSpots(LightField &field, const Surface &surface, const ActiveRegion &region, float depth)
{
    for (const Sunspot &spot : spotsOf(region))
        visitPixels(field, region, 2.2F, [&](float &light, const Local &local, float) {
            const float a = local.along - spot.along;
            const float c = local.across - spot.across;
            const float square = (a * a + c * c) / (spot.radius * spot.radius);
            if (square > 1.44F)
                return;
            const float ragged = 0.8F + 0.4F * patchesAt(surface, region, local).cloud;
            const float distance = std::sqrt(square) / ragged;
            const float penumbra = std::clamp((1.0F - distance) * 5.0F, 0.0F, 1.0F);
            const float umbra = std::clamp((0.5F - distance) * 7.0F, 0.0F, 1.0F);
            light *= 1.0F - depth * (0.28F * penumbra + 0.55F * umbra);
        });
}

} // namespace

void paintRegions(LightField &field, const Surface &surface,
                  const std::vector<ActiveRegion> &regions, const SunStyle &style)
{
    for (const ActiveRegion &region : regions) {
        const float flare = 1.0F + 4.0F * style.flares * region.flare;
        const float glow = style.glow * region.strength * std::sqrt(flare);
        const float plage = style.plage * region.strength;
        const float kernel = style.flares * style.plage * region.flare;
        visitPixels(field, region, 3.4F, [&](float &light, const Local &local, float z) {
            // White light shows the same patches only near the limb, as faculae.
            const float seen = style.spots >= 1.0F ? 3.0F * (1.0F - z) : 1.0F;
            const float soft = lobe(local, 0.0F, 0.0F, 3.4F);
            light += glow * soft * soft + plage * seen * plageAt(surface, region, local) +
                     kernel * lobe(local, 0.1F, 0.0F, 0.7F);
        });
        if (style.spots > 0.0F)
            paintSpots(field, surface, region, style.spots);
    }
}

void paintPolarities(LightField &field, const Surface &surface,
                     const std::vector<ActiveRegion> &regions)
{
    for (const ActiveRegion &region : regions) {
        const std::vector<Sunspot> spots = spotsOf(region);
        const float strength = region.isNorthern ? region.strength : -region.strength;
        visitPixels(field, region, 3.0F, [&](float &light, const Local &local, float z) {
            float flux = lobe(local, 0.8F, -0.1F, 1.2F) - lobe(local, -0.9F, 0.2F, 1.7F);
            if (flux != 0.0F) {
                const Texel texel = patchesAt(surface, region, local);
                flux *= std::max(texel.network * (0.4F + texel.threads) - 0.33F, 0.0F) * 6.0F;
            }
            for (const Sunspot &spot : spots)
                flux += (spot.along > 0.0F ? 3.0F : -3.0F) *
                        lobe(local, spot.along, spot.across, spot.radius);
            light += strength * flux * (0.3F + 0.7F * z);
        });
    }
}

} // namespace Simulator
