#pragma once

namespace Simulator {

/**
 * How fast the Sun's surface turns as seen from the Earth, in radians per day.
 *
 * Snodgrass and Ulrich, Astrophysical Journal 351, 309 (1990): 14.713 - 2.396 sin² - 1.787 sin⁴
 * of the latitude in degrees a day, less the Earth's own 0.9856.
 */
constexpr double synodicRadiansPerDay(double sinLatitude)
{
    constexpr double radiansPerDegree = 0.017453292519943295;
    const double square = sinLatitude * sinLatitude;
    return (14.713 - 2.396 * square - 1.787 * square * square - 0.9856) * radiansPerDegree;
}

} // namespace Simulator
