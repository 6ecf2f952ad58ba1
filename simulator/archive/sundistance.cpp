#include "simulator/archive/sundistance.h"

#include "simulator/archive/archive.h"

#include <QtMath>

#include <cmath>

namespace Simulator {

/// "Approximate solar coordinates" of the Astronomical Almanac, good to a part in ten thousand.
double sunDistanceAu(const ArchiveSource &source, qint64 unixTime)
{
    constexpr double unixTimeOfJ2000 = 946728000.0; // 2000-01-01 12:00
    if (!source.staysWithEarth)
        return 1.0;
    const double days = (static_cast<double>(unixTime) - unixTimeOfJ2000) / 86400.0;
    const double anomaly = qDegreesToRadians(357.528 + 0.9856003 * days);
    return 1.00014 - 0.01671 * std::cos(anomaly) - 0.00014 * std::cos(2.0 * anomaly);
}

} // namespace Simulator
