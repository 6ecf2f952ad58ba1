#include "simulator/sun/looppainter.h"

#include "simulator/hash.h"
#include "simulator/sun/lightfield.h"
#include "simulator/sun/look.h"

#include <algorithm>
#include <cmath>

namespace Simulator {

namespace {

constexpr float pi = 3.1415927F;
constexpr float loopRadius = 0.0028F; // of its cross-section, solar radii
constexpr float filamentRadius = 0.0085F;

/// Half an ellipse standing on the surface, from one foot over its top to the other.
struct Loop
{
    Vector3 middle;
    Vector3 half; ///< from the middle to the first foot
    Vector3 top;  ///< from the middle to the top
    float light = 0.0F;
    float phase = 0.0F; ///< of the gas that flows along it
};

/// A point of the surface, in sizes of the region from its centre.
Vector3 footOf(const ActiveRegion &region, float along, float across)
{
    return normalized(region.centre + region.along * (along * region.size) +
                      region.across * (across * region.size));
}

/// One arch of the arcade over the line between the polarities, the same whenever it is asked for.
Loop archOf(const ActiveRegion &region, quint64 number, qint64 unixTime)
{
    const Draw draw(hashOf(region.seed, 2 * number));
    const float shear = 1.1F * Draw(region.seed)(80) - 0.55F; // of the arcade's far side
    const float place = 2.0F * draw(1) - 1.0F; // along the line between the polarities
    const float reach = 0.22F + 1.15F * draw(2) * std::sqrt(draw(3));
    const Vector3 first = footOf(region, reach + 0.12F * draw(4), 0.75F * place + 0.1F * draw(5));
    const Vector3 second =
        footOf(region, -reach - 0.12F * draw(6), 0.85F * place + shear * reach + 0.1F * draw(7));
    Loop loop;
    loop.middle = (first + second) * 0.5F;
    loop.half = (first - second) * 0.5F;
    const float lean = 0.5F * place + 0.5F * (draw(8) - 0.5F);
    const float height = std::sqrt(dot(loop.half, loop.half)) * (0.85F + 0.35F * draw(9));
    loop.top = normalized(normalized(loop.middle) + region.across * lean) * height;
    loop.light = (0.2F + 0.8F * draw(10) * draw(10)) * (1.25F - 0.6F * reach);
    const double turns = static_cast<double>(unixTime) /
                         (1200.0 + 6000.0 * static_cast<double>(draw(12))); // of 20 to 120 min
    loop.phase = 2.0F * pi * (static_cast<float>(turns - std::floor(turns)) + draw(11));
    return loop;
}

bool isBehindSun(const Vector3 &point)
{
    return point.z < 0.0F && point.x * point.x + point.y * point.y < 1.0F;
}

void paintLoop(LightField &field, const Loop &loop, float light)
{
    const float circumference =
        1.6F * (std::sqrt(dot(loop.half, loop.half)) + std::sqrt(dot(loop.top, loop.top)));
    const float step = pi * field.stepFor(loopRadius) / std::max(circumference, 0.01F);
    const float stepLength = circumference / pi * step;
    Vector3 last = loop.middle + loop.half;
    const int steps = static_cast<int>(pi / step);
    for (int number = 1; number < steps; ++number) {
        const float along = step * static_cast<float>(number);
        const Vector3 point =
            loop.middle + loop.half * std::cos(along) + loop.top * std::sin(along);
        // A leg that points at the observer is many spots in one place.
        const float moved = std::hypot(point.x - last.x, point.y - last.y) / stepLength;
        last = point;
        if (isBehindSun(point))
            continue;
        const float fading = 1.0F - 0.5F * std::sin(along);
        const float flowing = 0.75F + 0.25F * std::sin(5.0F * along - loop.phase);
        field.addSpot(point.x, point.y, loopRadius,
                      light * loop.light * fading * flowing * std::clamp(moved, 0.3F, 1.2F));
    }
}

/// The gas of a filament above one point of the surface.
void paintColumn(LightField &field, const Vector3 &foot, float height, const SunStyle &style)
{
    const int spots = std::max(static_cast<int>(height / filamentRadius), 1);
    const float share = 1.0F / static_cast<float>(spots);
    for (int spot = 0; spot < spots; ++spot) {
        const Vector3 point = foot * (1.0F + height * static_cast<float>(spot) * share);
        if (isBehindSun(point))
            continue;
        if (point.x * point.x + point.y * point.y > 1.0F)
            field.addSpot(point.x, point.y, filamentRadius, style.prominences * 0.5F);
        else
            field.dimSpot(point.x, point.y, filamentRadius, 0.5F * style.filaments * share);
    }
}

/// From the point of a filament's path before @p number to that point.
void paintStretch(LightField &field, const Filament &filament, size_t number, const SunStyle &style)
{
    const Vector3 from = filament.path[number - 1];
    const Vector3 span = filament.path[number] - from;
    const int steps =
        std::max(static_cast<int>(std::sqrt(dot(span, span)) / field.stepFor(filamentRadius)), 1);
    for (int step = 0; step < steps; ++step) {
        const float along = static_cast<float>(step) / static_cast<float>(steps);
        const float place = static_cast<float>(number) + along;
        const float wave = std::sin(0.9F * place) * std::sin(0.37F * place);
        paintColumn(field, from + span * along, filament.height * (0.6F + 0.4F * wave), style);
    }
}

} // namespace

void paintLoops(LightField &field, const std::vector<ActiveRegion> &regions, qint64 unixTime,
                const SunStyle &style)
{
    for (const ActiveRegion &region : regions) {
        const float flare = 1.0F + 2.0F * style.flares * region.flare;
        const float light = style.loops * region.strength * flare;
        if (light <= 0.0F || region.centre.z < -0.55F)
            continue;
        const int count = static_cast<int>(110.0F * (0.25F + 0.75F * region.strength));
        for (int number = 0; number < count; ++number)
            paintLoop(field, archOf(region, static_cast<quint64>(number), unixTime), light);
    }
}

void paintFilaments(LightField &field, const std::vector<Filament> &filaments,
                    const SunStyle &style)
{
    if (style.filaments <= 0.0F && style.prominences <= 0.0F)
        return;
    for (const Filament &filament : filaments)
        for (size_t number = 1; number < filament.path.size(); ++number)
            paintStretch(field, filament, number, style);
}

} // namespace Simulator
