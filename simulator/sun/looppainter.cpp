#include "simulator/sun/looppainter.h"

#include "simulator/hash.h"
#include "simulator/sun/lightfield.h"
#include "simulator/sun/sunstyle.h"
#include "simulator/sun/surfaceview.h"

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
    float end = pi;         ///< where along it (0 to pi) it has faded out
    float phase = 0.0F;     ///< of the gas that flows along it
    float swiftness = 0.0F; ///< radians of that phase per second
};

/// Draws the loops of one region, each the same whenever it is asked for.
class LoopMaker
{
public:
    explicit LoopMaker(const ActiveRegion &region)
        : m_region(region), m_shear(1.1F * float(chance(region.seed, 80)) - 0.55F)
    {}

    /// One arch of an arcade over the line between the polarities.
    Loop arch(quint64 number) const
    {
        const Draw draw(hashOf(m_region.seed, 2 * number));
        const float place = 2.0F * draw(1) - 1.0F; // along the line between the polarities
        const float reach = 0.22F + 1.15F * draw(2) * std::sqrt(draw(3));
        const Vector3 first = foot(reach + 0.12F * draw(4), 0.75F * place + 0.1F * draw(5));
        const Vector3 second =
            foot(-reach - 0.12F * draw(6), 0.85F * place + m_shear * reach + 0.1F * draw(7));
        Loop loop =
            between(first, second, 0.5F * place + 0.5F * (draw(8) - 0.5F), 0.85F + 0.35F * draw(9));
        loop.light = (0.2F + 0.8F * draw(10) * draw(10)) * (1.25F - 0.6F * reach);
        setFlow(loop, draw);
        return loop;
    }

    /// One ray of a fan that spreads from a polarity and fades on its way to somewhere far.
    Loop ray(quint64 number) const
    {
        const Draw draw(hashOf(m_region.seed, 2 * number + 1));
        const bool leads = draw(1) < 0.65F;
        const float angle = (draw(2) - 0.5F) * 3.9F + (leads ? 0.0F : pi);
        const float cosine = std::cos(angle);
        const float sine = std::sin(angle);
        const float off = 0.1F + 0.25F * draw(3);
        const Vector3 first = foot((leads ? 0.85F : -0.85F) + cosine * off, sine * off);
        const float far = 2.2F + 1.6F * draw(4);
        const Vector3 second = foot((leads ? 0.85F : -0.85F) + cosine * far, sine * far);
        Loop loop = between(first, second, 0.0F, 0.9F + 0.4F * draw(5));
        loop.light = 0.25F + 0.75F * draw(6) * draw(6);
        loop.end = pi * (0.22F + 0.24F * draw(7));
        setFlow(loop, draw);
        return loop;
    }

private:
    class Draw
    {
    public:
        explicit Draw(quint64 seed) : m_seed(seed) {}
        float operator()(quint64 which) const { return float(chance(m_seed, which)); }

    private:
        quint64 m_seed;
    };

    /// A point of the surface, in sizes of the region from its centre.
    Vector3 foot(float along, float across) const
    {
        return normalized(m_region.centre + m_region.along * (along * m_region.size) +
                          m_region.across * (across * m_region.size));
    }

    Loop between(const Vector3 &first, const Vector3 &second, float lean, float height) const
    {
        Loop loop;
        loop.middle = (first + second) * 0.5F;
        loop.half = (first - second) * 0.5F;
        const float length = std::sqrt(dot(loop.half, loop.half));
        loop.top = normalized(normalized(loop.middle) + m_region.across * lean) * (length * height);
        return loop;
    }

    static void setFlow(Loop &loop, const Draw &draw)
    {
        loop.phase = draw(11) * 2.0F * pi;
        loop.swiftness = 2.0F * pi / (1200.0F + 6000.0F * draw(12)); // 20 minutes to 2 hours
    }

    const ActiveRegion &m_region;
    float m_shear; ///< how far the arcade's far side is displaced
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
    const float stepLength = circumference / pi * step;
    Vector3 last = surface.fromSun(loop.middle + loop.half);
    const int steps = int(std::min(loop.end, pi) / step);
    for (int number = 1; number < steps; ++number) {
        const float along = step * float(number);
        const Vector3 seen =
            surface.fromSun(loop.middle + loop.half * std::cos(along) + loop.top * std::sin(along));
        // A leg that points at the observer is many spots in one place.
        const float moved = std::hypot(seen.x - last.x, seen.y - last.y) / stepLength;
        last = seen;
        if (isBehindSun(seen))
            continue;
        const float left = 1.0F - along / loop.end;
        const float fading = loop.end < pi ? left * left : 1.0F - 0.5F * std::sin(along);
        const float moving = 0.75F + 0.25F * std::sin(5.0F * along - flow);
        field.addSpot(seen.x, seen.y, loopRadius,
                      light * loop.light * fading * moving * std::clamp(moved, 0.3F, 1.2F));
    }
}

void paintSeries(LightField &field, const SurfaceView &surface, const ActiveRegion &region,
                 qint64 unixTime, bool areRays, float light)
{
    if (light <= 0.0F || surface.fromSun(region.centre).z < -0.55F)
        return;
    const LoopMaker maker(region);
    const int count = int((areRays ? 70.0F : 110.0F) * (0.25F + 0.75F * region.strength));
    for (int number = 0; number < count; ++number)
        paintLoop(field, surface,
                  areRays ? maker.ray(quint64(number)) : maker.arch(quint64(number)), light,
                  double(unixTime));
}

/// The gas of a filament above one point of the surface.
void paintColumn(LightField &field, const SurfaceView &surface, const Vector3 &foot, float height,
                 const SunStyle &style)
{
    const int spots = std::max(int(height / filamentRadius), 1);
    const float share = 1.0F / float(spots);
    for (int spot = 0; spot < spots; ++spot) {
        const Vector3 seen = surface.fromSun(foot * (1.0F + height * float(spot) * share));
        if (isBehindSun(seen))
            continue;
        if (seen.x * seen.x + seen.y * seen.y > 1.0F)
            field.addSpot(seen.x, seen.y, filamentRadius, style.prominences * 0.5F);
        else
            field.dimSpot(seen.x, seen.y, filamentRadius, 0.5F * style.filaments * share);
    }
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
            const Vector3 span = filament.path[point] - from;
            const int steps =
                std::max(int(std::sqrt(dot(span, span)) / field.stepFor(filamentRadius)), 1);
            for (int step = 0; step < steps; ++step) {
                const float along = float(step) / float(steps);
                const float wave = std::sin(0.9F * (float(point) + along)) *
                                   std::sin(0.37F * (float(point) + along));
                paintColumn(field, surface, from + span * along,
                            filament.height * (0.6F + 0.4F * wave), style);
            }
        }
}

} // namespace Simulator
