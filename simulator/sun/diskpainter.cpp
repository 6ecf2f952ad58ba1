#include "simulator/sun/diskpainter.h"

#include "simulator/sun/lightfield.h"
#include "simulator/sun/look.h"
#include "simulator/sun/surface.h"

#include <algorithm>
#include <cmath>

namespace Simulator {

namespace {

float smooth(float value, float from, float to)
{
    const float t = std::clamp((value - from) / (to - from), 0.0F, 1.0F);
    return t * t * (3.0F - 2.0F * t);
}

/// Of a texture around an even brightness.
float contrasted(float texture, float strength)
{
    return std::max(1.0F + 2.0F * strength * (texture - 0.5F), 0.12F);
}

/// A layer that one sees through brightens towards the limb, an opaque one darkens linearly.
float limbFactor(float limb, float z)
{
    return limb >= 0.0F ? 1.0F + limb * (1.0F / (0.3F + 0.7F * z) - 1.0F)
                        : 1.0F + limb * (1.0F - z);
}

/// How much of the light a coronal hole leaves; around the poles there always is one.
float holeFactor(const Texel &texel, float sine, float depth)
{
    const float ragged = texel.region - 0.2F * texel.cloud + 0.1F;
    return 1.0F - depth * smooth(ragged + 0.42F * smooth(sine, 0.78F, 1.0F), 0.58F, 0.76F);
}

/// @p z is the cosine of the angle between the line of sight and the surface's normal.
float quietLight(const Texel &texel, float sinLatitude, float z, const SunStyle &style)
{
    const float sine = std::fabs(sinLatitude);
    const float fromBelt = (sine - 0.3F) / 0.2F;
    const float belt = 1.0F + style.belts / (1.0F + 1.5F * fromBelt * fromBelt);
    const float base =
        style.quiet * belt * limbFactor(style.limb, z) * contrasted(texel.network, style.network);
    const float point = smooth(texel.network, 0.78F, 1.1F);
    return holeFactor(texel, sine, style.holes) * contrasted(texel.cloud, style.cloud) *
           (base + style.threads * texel.threads * texel.threads + style.points * point * point);
}

} // namespace

void paintDisk(LightField &field, const Surface &surface, const SunStyle &style)
{
    field.visitDisk(field.boxAround(0.0F, 0.0F, 1.0F),
                    [&surface, &style](float &light, const Vector3 &point) {
                        light = quietLight(surface.texelAt(point), point.y, point.z, style);
                    });
}

} // namespace Simulator
