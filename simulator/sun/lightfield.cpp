#include "simulator/sun/lightfield.h"

#include <algorithm>

namespace Simulator {

LightField::LightField(int widthPx, int heightPx, const Disk &disk)
    : m_widthPx(widthPx)
    , m_heightPx(heightPx)
    , m_disk(disk)
    , m_light(static_cast<size_t>(widthPx) * static_cast<size_t>(heightPx), 0.0F)
{}

LightField::Box LightField::boxAround(float x, float y, float halfSide) const
{
    const float radius = static_cast<float>(m_disk.radius);
    const float column = static_cast<float>(m_disk.centreX) + x * radius;
    const float line = static_cast<float>(m_disk.centreY) - y * radius;
    const float reach = halfSide * radius;
    const auto clip = [](float value, int limit) {
        return static_cast<int>(std::clamp(value, 0.0F, static_cast<float>(limit)));
    };
    return {clip(column - reach, m_widthPx), clip(column + reach + 1.0F, m_widthPx),
            clip(line - reach, m_heightPx), clip(line + reach + 1.0F, m_heightPx)};
}

float LightField::effectiveRadius(float radius) const
{
    constexpr float thinnestPx = 1.25F; // below it a line breaks up into pixels
    return std::max(radius, thinnestPx / static_cast<float>(m_disk.radius));
}

template<typename Change>
void LightField::changeSpot(float x, float y, float radius, const Change &change)
{
    const float inverse = 1.0F / (radius * radius);
    visit(boxAround(x, y, radius), [=, &change](float &light, float pixelX, float pixelY) {
        const float dx = pixelX - x;
        const float dy = pixelY - y;
        const float room = 1.0F - (dx * dx + dy * dy) * inverse;
        if (room > 0.0F)
            change(light, room * room);
    });
}

void LightField::addSpot(float x, float y, float radius, float light)
{
    const float wide = effectiveRadius(radius);
    // A line that is drawn wider than it is becomes as much fainter.
    const float share = light * std::min(radius / wide, 1.0F);
    changeSpot(x, y, wide, [share](float &pixel, float weight) { pixel += share * weight; });
}

void LightField::dimSpot(float x, float y, float radius, float depth)
{
    changeSpot(x, y, effectiveRadius(radius),
               [depth](float &pixel, float weight) { pixel *= 1.0F - depth * weight; });
}

} // namespace Simulator
