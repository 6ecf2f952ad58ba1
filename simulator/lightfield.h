#pragma once

#include "simulator/scene.h"
#include "simulator/vector3.h"

#include <vector>

namespace Simulator {

/**
 * A picture in the making: light per pixel, without limit, before it becomes a colour.
 *
 * Places are given in solar radii from the disk's centre, y up.
 */
class LightField
{
public:
    LightField(int widthPx, int heightPx, const Disk &disk);

    int widthPx() const { return m_widthPx; }
    int heightPx() const { return m_heightPx; }
    const Disk &disk() const { return m_disk; }

    float *row(int number) { return m_light.data() + size_t(number) * size_t(m_widthPx); }
    const float *row(int number) const
    {
        return m_light.data() + size_t(number) * size_t(m_widthPx);
    }

    /// Centres of columns and rows in solar radii.
    float xOf(int column) const
    {
        return (float(column) + 0.5F - float(m_disk.centreX)) / float(m_disk.radius);
    }
    float yOf(int rowNumber) const
    {
        return (float(m_disk.centreY) - 0.5F - float(rowNumber)) / float(m_disk.radius);
    }

    /// Columns and rows that a square around a place covers; first = last when it is outside.
    struct Box
    {
        int left = 0;
        int right = 0; ///< behind the last
        int top = 0;
        int bottom = 0;
    };
    Box boxAround(float x, float y, float halfSide) const;

    /// Adds a soft round spot; @p radius in solar radii, at least that of a fine line.
    void addSpot(float x, float y, float radius, float light);
    /// Lets less light through, 1 for none in the middle of the spot.
    void dimSpot(float x, float y, float radius, float depth);

    /// Steps of that length, in solar radii, draw a line without gaps out of spots of a radius.
    float stepFor(float radius) const;
    float effectiveRadius(float radius) const;

private:
    template<typename Change>
    void changeSpot(float x, float y, float radius, const Change &change);

    int m_widthPx;
    int m_heightPx;
    Disk m_disk;
    std::vector<float> m_light;
};

} // namespace Simulator
