#include "simulator/sun/diskpainter.h"

#include "simulator/sun/lightfield.h"
#include "simulator/sun/sunstyle.h"
#include "simulator/sun/surfaceview.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Simulator {

namespace {

constexpr size_t steps = 256;
using Table = std::array<float, steps>;

template<typename Function>
Table tabulated(const Function &function)
{
    Table table{};
    for (size_t step = 0; step < steps; ++step)
        table[step] = function(float(step) / float(steps - 1));
    return table;
}

float smooth(float value, float from, float to)
{
    const float t = std::clamp((value - from) / (to - from), 0.0F, 1.0F);
    return t * t * (3.0F - 2.0F * t);
}

size_t stepOf(float value)
{
    return size_t(std::clamp(value, 0.0F, 1.0F) * float(steps - 1));
}

/// The laws of the quiet Sun, tabulated, since they are asked for each pixel.
class QuietSun
{
public:
    QuietSun(const SunStyle &style, float contrast)
        : m_cloud(factors(style.cloud, contrast))
        , m_network(factors(style.network, contrast))
        , m_threads(tabulated([&style](float v) { return style.threads * v * v; }))
        , m_points(tabulated([&style, contrast](float v) {
            return style.points * std::pow(smooth(0.5F + (v - 0.5F) * contrast, 0.78F, 1.1F), 2.0F);
        }))
        , m_holes(
              tabulated([&style](float v) { return 1.0F - style.holes * smooth(v, 0.58F, 0.76F); }))
        , m_polar(tabulated([](float sine) { return 0.42F * smooth(sine, 0.78F, 1.0F); }))
        , m_belts(tabulated([&style](float sine) {
            const float away = (sine - 0.3F) / 0.2F;
            return style.quiet * (1.0F + style.belts * std::exp(-away * away));
        }))
        , m_limb(tabulated([&style](float z) { return limbFactor(style.limb, z); }))
    {}

    /// @p z is the cosine of the angle between the line of sight and the surface's normal.
    float light(SurfaceTexels texels, float sinLatitude, float z) const
    {
        const float cloud = m_cloud[channelOf(texels, CloudChannel)];
        const size_t sine = stepOf(std::fabs(sinLatitude));
        const float region = float(channelOf(texels, RegionChannel)) / 255.0F;
        const float ragged = 0.2F * float(channelOf(texels, CloudChannel)) / 255.0F - 0.1F;
        const float hole = m_holes[stepOf(region - ragged + m_polar[sine])];
        const unsigned network = channelOf(texels, NetworkChannel);
        const float base = m_belts[sine] * m_limb[stepOf(z)] * m_network[network];
        return hole * cloud * (base + m_threads[channelOf(texels, ThreadChannel)]) +
               hole * m_points[network] * cloud;
    }

private:
    static Table factors(float strength, float contrast)
    {
        return tabulated([strength, contrast](float v) {
            return std::max(1.0F + 2.0F * strength * (v - 0.5F) * contrast, 0.12F);
        });
    }

    /// A layer that one sees through brightens, an opaque one darkens linearly.
    static float limbFactor(float limb, float z)
    {
        return limb >= 0.0F ? 1.0F + limb * (1.0F / (0.3F + 0.7F * z) - 1.0F)
                            : 1.0F + limb * (1.0F - z);
    }

    Table m_cloud;
    Table m_network;
    Table m_threads;
    Table m_points;
    Table m_holes;
    Table m_polar;
    Table m_belts;
    Table m_limb;
};

} // namespace

void paintDisk(LightField &field, const SurfaceView &surface, const SunStyle &style)
{
    const QuietSun sun(style, surface.contrast());
    field.visitDisk(field.boxAround(0.0F, 0.0F, 1.0F),
                    [&surface, &sun](float &light, const Vector3 &seen) {
                        const Vector3 point = surface.toSun(seen);
                        light = sun.light(surface.texelsAt(point), point.y, seen.z);
                    });
}

} // namespace Simulator
