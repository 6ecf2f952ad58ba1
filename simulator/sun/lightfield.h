#pragma once

#include "simulator/sun/scene.h"
#include "simulator/sun/vector3.h"

#include <vector>

namespace Simulator {

/**
 * A picture in the making: light per pixel, without limit, before it becomes a colour.
 *
 * Places are given in solar radii from the disk's centre, y up.
 */
class LightField final
{
public:
    LightField(int widthPx, int heightPx, const Disk &disk);

    int widthPx() const { return m_widthPx; }
    int heightPx() const { return m_heightPx; }
    const Disk &disk() const { return m_disk; }

    float *row(int number)
    {
        return m_light.data() + static_cast<size_t>(number) * static_cast<size_t>(m_widthPx);
    }
    const float *row(int number) const
    {
        return m_light.data() + static_cast<size_t>(number) * static_cast<size_t>(m_widthPx);
    }

    /// Centres of columns and rows in solar radii.
    float xOf(int column) const
    {
        return (static_cast<float>(column) + 0.5F - static_cast<float>(m_disk.centreX)) /
               static_cast<float>(m_disk.radius);
    }
    float yOf(int rowNumber) const
    {
        return (static_cast<float>(m_disk.centreY) - 0.5F - static_cast<float>(rowNumber)) /
               static_cast<float>(m_disk.radius);
    }

    /// Columns and rows that a square covers; first = last when it is outside.
    struct Box
    {
        int left = 0;
        int right = 0; ///< behind the last
        int top = 0;
        int bottom = 0;
    };
    Box boxAround(float x, float y, float halfSide) const;

    /// Calls @p visit(pixel, x, y) for each pixel within @p box.
    template<typename Visit>
    void visit(const Box &box, const Visit &visit);
    /// Calls @p visit(pixel, point) for each pixel of the disk within @p box, with the place on the
    /// unit sphere that it shows, z towards the viewer.
    template<typename Visit>
    void visitDisk(const Box &box, const Visit &visit);

    /// Adds a soft round spot; @p radius in solar radii, at least that of a fine line.
    void addSpot(float x, float y, float radius, float light);
    /// Lets less light through, 1 for none in the middle of the spot.
    void dimSpot(float x, float y, float radius, float depth);
    /// Steps of that length, in solar radii, draw a line without gaps out of spots of a radius.
    float stepFor(float radius) const { return 0.6F * effectiveRadius(radius); }

private:
    float effectiveRadius(float radius) const;
    template<typename Change>
    void changeSpot(float x, float y, float radius, const Change &change);

    int m_widthPx;
    int m_heightPx;
    Disk m_disk;
    std::vector<float> m_light;
};

template<typename Visit>
void LightField::visit(const Box &box, const Visit &visit)
{
    for (int line = box.top; line < box.bottom; ++line) {
        const float y = yOf(line);
        float *light = row(line);
        for (int column = box.left; column < box.right; ++column)
            visit(light[column], xOf(column), y);
    }
}

template<typename Visit>
void LightField::visitDisk(const Box &box, const Visit &visitPoint)
{
    visit(box, [&visitPoint](float &light, float x, float y) {
        const float square = 1.0F - x * x - y * y;
        if (square > 0.0F)
            visitPoint(light, Vector3{x, y, std::sqrt(square)});
    });
}

} // namespace Simulator
