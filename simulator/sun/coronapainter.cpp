#include "simulator/sun/coronapainter.h"

#include "simulator/sun/lightfield.h"
#include "simulator/sun/noise.h"
#include "simulator/sun/sunstyle.h"
#include "simulator/sun/surfaceview.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Simulator {

namespace {

constexpr size_t angles = 2048;
constexpr size_t heights = 4096;
constexpr float fadeEnd = 12.0F; // scale heights after which nothing is left
using Ring = std::array<float, angles>;

/// The corona by position angle: its light at the limb, its scale height, its rays.
struct Rim
{
    Ring light{};
    Ring inverseHeight{};
    Ring rays{};
};

/// How bright the surface is below and beside one point of the limb.
float surfaceAlong(const SurfaceView &surface, const Vector3 &limb)
{
    constexpr int reach = 3; // samples on either side of the limb
    float sum = 0.0F;
    for (int sample = -reach; sample <= reach; ++sample) {
        const float z = float(sample) * 0.12F;
        const Vector3 point = surface.toSun(normalized({limb.x, limb.y, z}));
        const SurfaceTexels texels = surface.texelsAt(point);
        const float cloud = float(channelOf(texels, CloudChannel)) / 255.0F;
        const float region = float(channelOf(texels, RegionChannel)) / 255.0F;
        const float pole = std::max(std::fabs(point.y) - 0.75F, 0.0F) * 1.6F;
        sum += 0.5F + cloud - 1.1F * std::max(region + pole - 0.55F, 0.0F);
    }
    return std::max(sum / (2 * reach + 1), 0.12F);
}

/// What active regions near the limb add there.
float regionsAt(const Vector3 &limb, const std::vector<ActiveRegion> &regions,
                const SurfaceView &surface)
{
    float sum = 0.0F;
    for (const ActiveRegion &region : regions) {
        const Vector3 seen = surface.fromSun(region.centre);
        const Vector3 away = seen - limb;
        const float width = 2.2F * region.size + 0.05F;
        sum += region.strength * std::exp(-dot(away, away) / (width * width));
    }
    return sum;
}

Rim rimOf(const SurfaceView &surface, const std::vector<ActiveRegion> &regions,
          const SunStyle &style)
{
    Rim rim;
    for (size_t angle = 0; angle < angles; ++angle) {
        const float radians = float(angle) / float(angles) * 6.2831853F;
        const Vector3 limb{std::sin(radians), std::cos(radians), 0.0F};
        const float base = surfaceAlong(surface, limb);
        const float active = regionsAt(limb, regions, surface);
        rim.light[angle] = style.corona * (base * std::sqrt(base) + 2.2F * active);
        rim.inverseHeight[angle] =
            1.0F / (style.coronaHeight * (0.6F + 0.4F * base + 0.35F * std::min(active, 1.5F)));
        // Rays turn with the Sun: they are drawn from the noise at the limb's own place on it.
        const Vector3 place = surface.toSun(limb);
        rim.rays[angle] = 0.55F * noise(limb * 16.0F + place * 2.0F) +
                          0.4F * noise(limb * 42.0F + place * 3.0F) + 0.25F * noise(limb * 110.0F);
    }
    return rim;
}

class Fade
{
public:
    Fade()
    {
        for (size_t step = 0; step < heights; ++step)
            m_table[step] = std::exp(-float(step) * fadeEnd / float(heights));
    }
    /// exp(-x), 0 far out.
    float operator()(float x) const
    {
        const auto step = size_t(x * float(heights) / fadeEnd);
        return step < heights ? m_table[step] : 0.0F;
    }

private:
    std::array<float, heights> m_table{};
};

size_t angleOf(float x, float y)
{
    return size_t(int((turnsOf(x, y) + 1.0F) * float(angles))) % angles;
}

} // namespace

void paintCorona(LightField &field, const SurfaceView &surface,
                 const std::vector<ActiveRegion> &regions, const SunStyle &style)
{
    if (style.corona <= 0.0F)
        return;
    static const Fade fade;
    const Rim rim = rimOf(surface, regions, style);
    const float reach = 1.0F + 9.0F * style.coronaHeight;
    for (int line = 0; line < field.heightPx(); ++line) {
        const float y = field.yOf(line);
        float *light = field.row(line);
        for (int column = 0; column < field.widthPx(); ++column) {
            const float x = field.xOf(column);
            const float square = x * x + y * y;
            if (square < 1.0F || square > reach * reach)
                continue;
            const float height = std::sqrt(square) - 1.0F;
            const size_t angle = angleOf(x, y);
            const float rays = 1.0F + rim.rays[angle] * std::min(height * 14.0F, 1.3F);
            light[column] += rim.light[angle] * rays * fade(height * rim.inverseHeight[angle]);
        }
    }
}

} // namespace Simulator
