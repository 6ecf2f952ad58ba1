#include "simulator/sun/coronapainter.h"

#include "simulator/sun/lightfield.h"
#include "simulator/sun/look.h"
#include "simulator/sun/noise.h"
#include "simulator/sun/surface.h"

#include <algorithm>
#include <cmath>

namespace Simulator {

namespace {

constexpr int angles = 2048;

/// The corona at one position angle.
struct Column
{
    float light = 0.0F; ///< at the limb
    float inverseHeight = 0.0F;
    float rays = 0.0F;
};

/// How bright the surface is below and beside one point of the limb.
float surfaceAlong(const Surface &surface, const Vector3 &limb)
{
    constexpr int reach = 3; // samples on either side of the limb
    float sum = 0.0F;
    for (int sample = -reach; sample <= reach; ++sample) {
        const Vector3 point = normalized({limb.x, limb.y, static_cast<float>(sample) * 0.12F});
        const Texel texel = surface.texelAt(point);
        const float pole = std::max(std::fabs(point.y) - 0.75F, 0.0F) * 1.6F;
        sum += 0.5F + texel.cloud - 1.1F * std::max(texel.region + pole - 0.55F, 0.0F);
    }
    return std::max(sum / (2 * reach + 1), 0.12F);
}

/// What active regions near the limb add there.
float regionsAt(const Vector3 &limb, const std::vector<ActiveRegion> &regions)
{
    float sum = 0.0F;
    for (const ActiveRegion &region : regions) {
        const Vector3 away = region.centre - limb;
        const float width = 2.2F * region.size + 0.05F;
        sum += region.strength * std::exp(-dot(away, away) / (width * width));
    }
    return sum;
}

Column columnAt(int angle, const Surface &surface, const std::vector<ActiveRegion> &regions,
                const SunStyle &style)
{
    const float radians = static_cast<float>(angle) / static_cast<float>(angles) * 6.2831853F;
    const Vector3 limb{std::sin(radians), std::cos(radians), 0.0F};
    const float base = surfaceAlong(surface, limb);
    const float active = regionsAt(limb, regions);
    return {style.corona * (base * std::sqrt(base) + 2.2F * active),
            1.0F / (style.coronaHeight * (0.6F + 0.4F * base + 0.35F * std::min(active, 1.5F))),
            0.55F * noise(limb * 16.0F) + 0.4F * noise(limb * 42.0F) +
                0.25F * noise(limb * 110.0F)};
}

} // namespace

void paintCorona(LightField &field, const Surface &surface,
                 const std::vector<ActiveRegion> &regions, const SunStyle &style)
{
    if (style.corona <= 0.0F)
        return;
    std::vector<Column> columns;
    columns.reserve(angles);
    for (int angle = 0; angle < angles; ++angle)
        columns.push_back(columnAt(angle, surface, regions, style));
    const float reach = 1.0F + 9.0F * style.coronaHeight;
    field.visit(field.boxAround(0.0F, 0.0F, reach), [=, &columns](float &light, float x, float y) {
        const float square = x * x + y * y;
        if (square < 1.0F || square > reach * reach)
            return;
        const float height = std::sqrt(square) - 1.0F;
        const Column &column =
            columns[static_cast<size_t>((turnsOf(x, y) + 1.0F) * angles) % angles];
        const float rays = 1.0F + column.rays * std::min(height * 14.0F, 1.3F);
        light += column.light * rays * std::exp(-height * column.inverseHeight);
    });
}

} // namespace Simulator
