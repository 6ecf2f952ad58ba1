#include "simulator/sun/coronagraphpainter.h"

#include "simulator/hash.h"
#include "simulator/sun/activeregions.h"
#include "simulator/sun/lightfield.h"
#include "simulator/sun/noise.h"
#include "simulator/sun/surfaceview.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace Simulator {

namespace {

constexpr double secondsPerHour = 3600.0;
constexpr double secondsPerDay = 86400.0;
constexpr float solarRadiusKm = 695700.0F;
constexpr float turn = 6.2831853F;

/// What one coronagraph sees; lengths in solar radii.
struct Optics
{
    float occulter = 2.2F;
    float edge = 8.6F;       ///< beyond it nothing is seen
    float background = 0.2F; ///< light without a streamer
    float falloff = 1.1F;    ///< power of the distance with which streamers fade
    int stars = 70;
    bool hasPylon = false; ///< the occulter hangs on an arm
};

Optics opticsOf(Look look)
{
    switch (look) {
    case Look::CoronaC3:
        return {4.4F, 32.0F, 0.24F, 0.9F, 420, true};
    case Look::CoronaCor1:
        return {1.45F, 4.1F, 0.18F, 1.6F, 0, false};
    case Look::CoronaCor2:
        return {2.6F, 15.2F, 0.22F, 1.0F, 160, false};
    case Look::CoronaK:
        return {1.06F, 3.0F, 0.06F, 2.4F, 0, false};
    case Look::CoronaWide:
        return {6.0F, 174.0F, 0.12F, 0.7F, 900, false};
    default:
        return {};
    }
}

/// Gas thrown out: a bubble that grows as it leaves.
struct Outburst
{
    float angle = 0.0F; ///< position angle in turns
    float front = 0.0F; ///< distance of its tip from the centre, solar radii
    float width = 0.3F; ///< radius of the bubble in shares of the front's distance
    float light = 0.0F;
};

std::vector<Outburst> outburstsAt(qint64 unixTime)
{
    constexpr double spacing = 5.0 * secondsPerHour;
    constexpr int kept = 20; // four days, in which the slowest leaves the widest field
    std::vector<Outburst> outbursts;
    const auto last = qint64(double(unixTime) / spacing);
    for (qint64 number = last - kept; number <= last; ++number) {
        const auto draw = [number](quint64 which) {
            return float(chance(hashOf(0xc3e, quint64(number)), which));
        };
        const double age = double(unixTime) - (double(number) + double(draw(0))) * spacing;
        if (age < 0.0 || draw(1) > 0.25F + 0.6F * float(solarActivity(unixTime)))
            continue;
        const float kmPerSecond = 250.0F + 900.0F * draw(2) * draw(2);
        const float side = draw(3) < 0.5F ? 0.25F : 0.75F; // of the equator, east or west
        Outburst outburst;
        outburst.angle = side + 0.22F * (draw(4) - 0.5F);
        outburst.front = 1.0F + kmPerSecond * float(age) / solarRadiusKm;
        outburst.width = 0.2F + 0.2F * draw(5);
        outburst.light = (0.35F + 0.65F * draw(6)) / (1.0F + 0.05F * outburst.front);
        outbursts.push_back(outburst);
    }
    return outbursts;
}

/// Light of an outburst at a place: a bright front, a dark cavity, a bright core.
float lightOf(const Outburst &outburst, float distance, float angle)
{
    const float away = (angle - outburst.angle) * turn;
    const float radius = outburst.width * outburst.front;
    const float middle = outburst.front - radius;
    const float along = distance * std::cos(away) - middle;
    const float across = distance * std::sin(away);
    const float place = std::sqrt(along * along + across * across) / radius;
    if (place > 1.3F)
        return 0.0F;
    const float front = std::max(1.0F - std::fabs(place - 0.93F) * 4.5F, 0.0F);
    const float core = std::max(1.0F - std::fabs(place - 0.25F) * 3.0F, 0.0F);
    const float onset = along > -radius ? 1.0F : 0.4F;
    return outburst.light * onset * (0.55F * front * front + 0.3F * core + (place < 1 ? 0.06F : 0));
}

/// The corona unrolled: columns go around, rows outwards in equal ratios of distance.
class UnrolledCorona
{
public:
    UnrolledCorona(qint64 unixTime, const Optics &optics)
        : m_optics(optics)
        , m_rowsPerLog(float(rows - 1) / std::log(optics.edge / optics.occulter))
        , m_light(size_t(columns) * rows)
    {
        const float days = float(std::fmod(double(unixTime) / secondsPerDay, 2000.0));
        std::vector<float> streamers(columns);
        for (int column = 0; column < columns; ++column)
            streamers[size_t(column)] = streamersAt(directionOf(column), days);
        const std::vector<Outburst> outbursts = outburstsAt(unixTime);
        for (int row = 0; row < rows; ++row)
            fillRow(row, double(unixTime), streamers, outbursts);
    }

    float at(float turns, float distance) const
    {
        const float column = (turns + 1.0F) * float(columns);
        const float row = std::log(distance / m_optics.occulter) * m_rowsPerLog;
        const int i = int(column);
        const int j = std::min(int(row), rows - 2);
        const float across = column - float(i);
        const float up = row - float(j);
        const float *lower = m_light.data() + size_t(j) * columns;
        const float *upper = lower + columns;
        const int left = i % columns;
        const int right = (i + 1) % columns;
        const float below = lower[left] + (lower[right] - lower[left]) * across;
        const float above = upper[left] + (upper[right] - upper[left]) * across;
        return below + (above - below) * up;
    }

private:
    static constexpr int columns = 1440;
    static constexpr int rows = 192;

    /// Streamers stand over the equator in the minimum and all around in the maximum.
    static float streamersAt(const Vector3 &direction, float days)
    {
        const float slow = 0.12F * days; // the pattern changes as the Sun turns below it
        const float belt = 1.0F - 0.75F * direction.y * direction.y;
        const float wide = 0.5F + 0.9F * noise(direction * 1.7F + Vector3{0.0F, slow, 0.0F});
        const float rays = ridgedNoise(direction * 3.1F + Vector3{slow, 0.0F, 7.0F}, 3);
        const float fine = noise(direction * 26.0F + Vector3{slow * 3.0F, 3.0F, 0.0F});
        return belt * std::max(wide, 0.05F) * (0.15F + 1.6F * std::pow(rays, 5.0F)) *
               (1.0F + 0.35F * fine);
    }

    static Vector3 directionOf(int column)
    {
        const float angle = float(column) / columns * turn;
        return {std::sin(angle), std::cos(angle), 0.0F};
    }

    void fillRow(int row, double unixTime, const std::vector<float> &streamers,
                 const std::vector<Outburst> &outbursts)
    {
        const float distance = m_optics.occulter * std::exp(float(row) / m_rowsPerLog);
        const float fall = std::pow(m_optics.occulter / distance, m_optics.falloff);
        const double hours = std::fmod(unixTime / secondsPerHour, 500.0);
        // Blobs leave along the streamers.
        const float outwards = 3.0F * std::log(distance) - float(0.5 * hours);
        float *light = m_light.data() + size_t(row) * columns;
        for (int column = 0; column < columns; ++column) {
            const Vector3 direction = directionOf(column) * 6.0F;
            const float blobs = noise(direction + Vector3{0.0F, 0.0F, outwards});
            float sum = fall * streamers[size_t(column)] * (1.0F + 0.3F * blobs);
            for (const Outburst &outburst : outbursts)
                sum += lightOf(outburst, distance, float(column) / columns) * std::sqrt(fall) *
                       (0.8F + 0.5F * blobs);
            light[column] = m_optics.background * (0.45F + 0.75F * fall) + sum;
        }
    }

    Optics m_optics;
    float m_rowsPerLog;
    std::vector<float> m_light;
};

/// Stars pass behind the Sun from left to right, a degree a day.
void paintStars(LightField &field, qint64 unixTime, const Optics &optics)
{
    constexpr double radiiPerDay = 3.7;
    const double span = 2.4 * double(optics.edge);
    for (int star = 0; star < optics.stars; ++star) {
        const auto draw = [star](quint64 which) { return chance(0x57a2 + quint64(star), which); };
        const double travelled = double(unixTime) / secondsPerDay * radiiPerDay / span + draw(0);
        const double x = (travelled - std::floor(travelled) - 0.5) * span;
        const double y = (draw(1) - 0.5) * span;
        const double distance = std::hypot(x, y);
        if (distance < double(optics.occulter) || distance > double(optics.edge))
            continue;
        const double brightness = 0.1 + 0.9 * std::pow(draw(2), 8.0);
        const float pixel = 1.0F / float(field.disk().radius);
        field.addSpot(float(x), float(y), pixel * float(1.2 + 1.6 * brightness * brightness),
                      float(1.8 * brightness));
    }
}

/// The arm that holds the occulter, towards the lower left.
bool isBehindPylon(float x, float y, float distance)
{
    constexpr float cosine = -0.82F;
    constexpr float sine = -0.57F;
    const float along = x * cosine + y * sine;
    const float across = std::fabs(y * cosine - x * sine);
    return along > 0.0F && across < 0.3F + 0.055F * distance;
}

} // namespace

void paintCoronagraph(LightField &field, qint64 unixTime, Look look)
{
    const Optics optics = opticsOf(look);
    const UnrolledCorona corona(unixTime, optics);
    paintStars(field, unixTime, optics);
    for (int line = 0; line < field.heightPx(); ++line) {
        const float y = field.yOf(line);
        float *light = field.row(line);
        for (int column = 0; column < field.widthPx(); ++column) {
            const float x = field.xOf(column);
            const float distance = std::sqrt(x * x + y * y);
            const bool isHidden = distance < optics.occulter || distance > optics.edge ||
                                  (optics.hasPylon && isBehindPylon(x, y, distance));
            if (isHidden)
                light[column] = 0.0F;
            else
                light[column] += corona.at(turnsOf(x, y), distance);
        }
    }
}

} // namespace Simulator
