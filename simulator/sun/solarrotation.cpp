#include "simulator/sun/solarrotation.h"

#include <QtMath>

#include <cmath>

namespace Simulator {

double synodicRadiansPerDay(double sinLatitude)
{
    const double square = sinLatitude * sinLatitude;
    return qDegreesToRadians(14.713 - 2.396 * square - 1.787 * square * square - 0.9856);
}

double tiltOfAxis(qint64 unixTime)
{
    constexpr double secondsPerYear = 365.2422 * 86400.0;
    constexpr double crossing = 1717718400.0; // 2024-06-07: the Earth passes the Sun's equator
    const double phase = (double(unixTime) - crossing) / secondsPerYear * 2.0 * M_PI;
    return qDegreesToRadians(7.25) * std::sin(phase);
}

} // namespace Simulator
