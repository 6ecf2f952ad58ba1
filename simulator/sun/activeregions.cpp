#include "simulator/sun/activeregions.h"

#include "simulator/hash.h"
#include "simulator/sun/solarrotation.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace Simulator {

namespace {

constexpr double secondsPerDay = 86400.0;
constexpr double secondsPerYear = 365.2422 * secondsPerDay;
constexpr double unixTimeOfMinimum = 1575158400.0; // 2019-12-01, between cycles 24 and 25
constexpr double cycleYears = 11.0;

constexpr double birthSpacing = 0.8 * secondsPerDay; // of one region, in the maximum
constexpr double longestLife = 40.0 * secondsPerDay;
constexpr double flareSpacing = 4.0 * 3600.0; // one in that time, if any

constexpr double filamentSpacing = 3.0 * secondsPerDay;
constexpr double filamentLife = 30.0 * secondsPerDay;

double cyclePhase(double unixTime)
{
    const double cycles = (unixTime - unixTimeOfMinimum) / secondsPerYear / cycleYears;
    return cycles - std::floor(cycles);
}

/// Numbers drawn for one event of a series, the k-th from the k-th call's argument.
class Draw
{
public:
    explicit Draw(quint64 seed) : m_seed(seed) {}
    double operator()(quint64 which) const { return chance(m_seed, which); }

private:
    quint64 m_seed;
};

Vector3 pointAt(double latitude, double longitude)
{
    return {float(std::cos(latitude) * std::sin(longitude)), float(std::sin(latitude)),
            float(std::cos(latitude) * std::cos(longitude))};
}

/// A large flare rises in minutes and fades within the hour.
double flareAt(quint64 seed, double unixTime, double strength)
{
    double brightness = 0.0;
    const double slot = std::floor(unixTime / flareSpacing);
    for (const double number : {slot - 1.0, slot}) {
        const Draw draw(hashOf(seed, quint64(number)));
        if (draw(0) > 0.35 * strength)
            continue;
        const double minutes = (unixTime - (number + draw(1)) * flareSpacing) / 60.0;
        const double size = 0.15 + 0.85 * std::pow(draw(2), 3.0);
        if (minutes > -6.0)
            brightness += size * (minutes < 0.0 ? std::exp(-minutes * minutes / 8.0)
                                                : std::exp(-minutes / (12.0 + 30.0 * draw(3))));
    }
    return std::min(brightness, 1.0);
}

/// Where a point of that latitude, at @p longitude when it was born, is @p seconds later.
double turned(double longitude, double latitude, double seconds)
{
    return longitude + synodicRadiansPerDay(std::sin(latitude)) * seconds / secondsPerDay;
}

ActiveRegion regionOf(quint64 seed, double age, double life, double bornUnixTime)
{
    const Draw draw(seed);
    const double phase = cyclePhase(bornUnixTime);
    const bool northern = draw(2) < 0.5;
    // Spoerer's law: belts move from 28 degrees to 8 in the course of a cycle.
    const double latitude =
        qDegreesToRadians(28.0 - 20.0 * phase + 14.0 * (draw(3) - 0.5)) * (northern ? 1.0 : -1.0);
    const double longitude = turned(2.0 * M_PI * draw(4), latitude, age);
    // Joy's law: the leading part lies closer to the equator.
    const double inclination = (northern ? -1.0 : 1.0) * qDegreesToRadians(4.0 + 14.0 * draw(5));

    ActiveRegion region;
    region.seed = seed;
    region.northern = northern;
    region.centre = pointAt(latitude, longitude);
    const Vector3 west = pointAt(0.0, longitude + M_PI / 2.0);
    const Vector3 north = cross(region.centre, west);
    region.along = west * float(std::cos(inclination)) + north * float(std::sin(inclination));
    region.across = cross(region.centre, region.along);
    const double share = age / life;
    const double swell = std::min(share * 5.0, 1.0) * std::sqrt(1.0 - share);
    region.strength = float(swell * (0.25 + 0.75 * draw(6)));
    region.size = float((0.035 + 0.065 * draw(7)) * (0.6 + 0.8 * std::min(share * 3.0, 1.0)));
    region.flare = float(flareAt(seed, bornUnixTime + age, double(region.strength)));
    return region;
}

Filament filamentOf(quint64 seed, double age)
{
    const Draw draw(seed);
    const double latitude = qDegreesToRadians(18.0 + 34.0 * draw(1)) * (draw(2) < 0.5 ? 1.0 : -1.0);
    const double longitude = 2.0 * M_PI * draw(3);
    const double length = 0.15 + 0.4 * draw(4);
    const double slope = (draw(5) - 0.5) * 1.2;
    Filament filament;
    filament.seed = seed;
    filament.height = float(0.025 + 0.04 * draw(6));
    constexpr int points = 48;
    for (int point = 0; point <= points; ++point) {
        const double along = double(point) / points - 0.5;
        const double bend = 0.04 * std::sin(along * 6.0 + 6.0 * draw(7)) +
                            0.006 * std::sin(along * 25.0 + 6.0 * draw(8));
        const double lat = latitude + along * length * slope + bend;
        filament.path.push_back(pointAt(lat, turned(longitude + along * length, latitude, age)));
    }
    return filament;
}

} // namespace

double solarActivity(qint64 unixTime)
{
    // Cycles rise in four years and fall in seven.
    return std::pow(std::sin(M_PI * std::pow(cyclePhase(double(unixTime)), 0.7)), 2.0);
}

std::vector<ActiveRegion> activeRegionsAt(qint64 unixTime)
{
    std::vector<ActiveRegion> regions;
    const double now = double(unixTime);
    const auto last = qint64(std::floor(now / birthSpacing));
    const auto first = qint64(std::floor((now - longestLife) / birthSpacing));
    for (qint64 number = first; number <= last; ++number) {
        const quint64 seed = hashOf(0xac71, quint64(number));
        const Draw draw(seed);
        const double born = (double(number) + draw(0)) * birthSpacing;
        const double life = longestLife * (0.25 + 0.75 * draw(1));
        const double activity = 0.06 + 0.94 * solarActivity(qint64(born));
        if (draw(8) < activity && now > born && now < born + life)
            regions.push_back(regionOf(seed, now - born, life, born));
    }
    return regions;
}

std::vector<Filament> filamentsAt(qint64 unixTime)
{
    std::vector<Filament> filaments;
    const double now = double(unixTime);
    const auto last = qint64(std::floor(now / filamentSpacing));
    const auto first = qint64(std::floor((now - filamentLife) / filamentSpacing));
    for (qint64 number = first; number <= last; ++number) {
        const quint64 seed = hashOf(0xf11a, quint64(number));
        const double age = now - (double(number) + chance(seed, 0)) * filamentSpacing;
        if (age > 0.0 && age < filamentLife)
            filaments.push_back(filamentOf(seed, age));
    }
    return filaments;
}

} // namespace Simulator
