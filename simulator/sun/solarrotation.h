#pragma once

#include <QtGlobal>

namespace Simulator {

/**
 * How fast the Sun's surface turns as seen from the Earth, in radians per day.
 *
 * Snodgrass and Ulrich, Astrophysical Journal 351, 309 (1990): 14.713 - 2.396 sin² - 1.787 sin⁴
 * of the latitude in degrees a day, less the Earth's own 0.9856.
 */
double synodicRadiansPerDay(double sinLatitude);

/// Heliographic latitude of the disk's centre in radians: 7.25° in September, -7.25° in March.
double tiltOfAxis(qint64 unixTime);

} // namespace Simulator
