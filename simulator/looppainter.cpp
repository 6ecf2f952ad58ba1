#include "simulator/looppainter.h"

#include "simulator/hash.h"
#include "simulator/lightfield.h"
#include "simulator/sunstyle.h"
#include "simulator/surfaceview.h"

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
    float end = pi;         ///< where along it (0 to pi) it fades out
    float phase = 0.0F;     ///< of the gas that flows along it
    float swiftness = 0.0F; ///< radians of that phase per second
};

class LoopMaker
{
public:
    LoopMaker(const ActiveRegion &region, quint64 series) : m_region(region), m_series(series) {}

    /// A closed loop between the polarities, or a fan's ray that leaves one of them.
    Loop make(quint64 number, bool isFan) const
    {
        const auto draw = [this, number](quint64 which) {
            return float(chance(hashOf(m_region.seed, m_series), number * 16 + which));
        };
        const bool leads = draw(0) < 0.5F;
        const float spread = isFan ? 0.35F : 0.75F;
        const Vector3 first = foot(leads, (draw(1) - 0.5F) * spread, (draw(2) - 0.5F) * spread);
        Vector3 second = foot(!leads, (draw(3) - 0.5F) * 1.5F, (draw(4) - 0.5F) * 1.7F);
        if (isFan) {
            const float turn = (draw(5) - 0.5F) * 2.6F + (leads ? 0.0F : pi);
            const float far = m_region.size * (2.5F + 4.0F * draw(6));
            second = normalized(first + m_region.along * (std::cos(turn) * far) +
                                m_region.across * (std::sin(turn) * far));
        }
        Loop loop;
        loop.middle = (first + second) * 0.5F;
        loop.half = (first - second) * 0.5F;
        const float length = std::sqrt(dot(loop.half, loop.half));
        const Vector3 lean = m_region.across * ((draw(7) - 0.5F) * 0.9F);
        loop.top = normalized(normalized(loop.middle) + lean) * (length * (0.65F + 0.6F * draw(8)));
        loop.light = 0.15F + 0.85F * draw(9) * draw(9);
        loop.end = isFan ? pi * (0.25F + 0.3F * draw(10)) : pi * 1.02F;
        loop.phase = draw(11) * 2.0F * pi;
        loop.swiftness = 2.0F * pi / (1200.0F + 6000.0F * draw(12)); // 20 minutes to 2 hours
        return loop;
    }

private:
    Vector3 foot(bool leads, float along, float across) const
    {
        const float side = leads ? 0.85F : -0.85F;
        return normalized(m_region.centre + m_region.along * ((side + along) * m_region.size) +
                          m_region.across * (across * m_region.size));
    }

    const ActiveRegion &m_region;
    quint64 m_series;
};

bool isBehindSun(const Vector3 &seen)
{
    return seen.z < 0.0F && seen.x * seen.x + seen.y * seen.y < 1.0F;
}

void paintLoop(LightField &field, const SurfaceView &surface, const Loop &loop, float light,
               double unixTime)
{
    const float flow = float(std::fmod(unixTime * double(loop.swiftness), 2.0 * M_PI)) + loop.phase;
    const float circumference =
        1.6F * (std::sqrt(dot(loop.half, loop.half)) + std::sqrt(dot(loop.top, loop.top)));
    const float step = pi * field.stepFor(loopRadius) / std::max(circumference, 0.01F);
    for (float along = 0.0F; along < std::min(loop.end, pi); along += step) {
        const Vector3 point =
            loop.middle + loop.half * std::cos(along) + loop.top * std::sin(along);
        const Vector3 seen = surface.fromSun(point);
        if (isBehindSun(seen))
            continue;
        const float left = 1.0F - along / loop.end;
        const float fading = loop.end < pi ? left * left : 1.0F - 0.55F * std::sin(along);
        const float moving = 0.75F + 0.25F * std::sin(5.0F * along - flow);
        field.addSpot(seen.x, seen.y, loopRadius, light * loop.light * fading * moving);
    }
}

void paintSeries(LightField &field, const SurfaceView &surface, const ActiveRegion &region,
                 qint64 unixTime, bool areFans, float light)
{
    if (light <= 0.0F || surface.fromSun(region.centre).z < -0.55F)
        return;
    const LoopMaker maker(region, areFans ? 1 : 0);
    const int count = int((areFans ? 34.0F : 64.0F) * (0.3F + 0.7F * region.strength));
    for (int number = 0; number < count; ++number)
        paintLoop(field, surface, maker.make(quint64(number), areFans), light, double(unixTime));
}

} // namespace

void paintLoops(LightField &field, const SurfaceView &surface,
                const std::vector<ActiveRegion> &regions, qint64 unixTime, const SunStyle &style)
{
    for (const ActiveRegion &region : regions) {
        const float flare = 1.0F + 2.0F * style.flares * region.flare;
        paintSeries(field, surface, region, unixTime, false, style.loops * region.strength * flare);
        paintSeries(field, surface, region, unixTime, true, style.fans * region.strength);
    }
}

void paintFilaments(LightField &field, const SurfaceView &surface,
                    const std::vector<Filament> &filaments, const SunStyle &style)
{
    if (style.filaments <= 0.0F && style.prominences <= 0.0F)
        return;
    for (const Filament &filament : filaments)
        for (size_t point = 1; point < filament.path.size(); ++point) {
            const Vector3 from = filament.path[point - 1];
            const Vector3 to = filament.path[point];
            const Vector3 span = to - from;
            const int steps =
                std::max(int(std::sqrt(dot(span, span)) / field.stepFor(filamentRadius)), 1);
            for (int step = 0; step < steps; ++step) {
                const float up = float(chance(filament.seed, quint64(point * 64) + quint64(step)));
                const Vector3 place = from + span * (float(step) / float(steps));
                const Vector3 seen = surface.fromSun(place * (1.0F + filament.height * up * up));
                if (isBehindSun(seen))
                    continue;
                const bool beyondLimb = seen.x * seen.x + seen.y * seen.y > 1.0F;
                if (beyondLimb)
                    field.addSpot(seen.x, seen.y, filamentRadius, style.prominences);
                else
                    field.dimSpot(seen.x, seen.y, filamentRadius, 0.45F * style.filaments);
            }
        }
}

} // namespace Simulator
