#include "simulator/sun/coronagraphpainter.h"

#include "simulator/hash.h"
#include "simulator/sun/lightfield.h"
#include "simulator/sun/look.h"
#include "simulator/sun/noise.h"

#include <algorithm>
#include <cmath>

namespace Simulator {

namespace {

constexpr double secondsPerHour = 3600.0;
constexpr double secondsPerDay = 86400.0;
constexpr int angles = 1440;

/// Light of the streamers at the occulter's edge by position angle, the first one again at the end.
std::vector<float> streamersAt(qint64 unixTime)
{
    // The pattern changes as the Sun turns below it.
    const float slow =
        0.12F *
        static_cast<float>(std::fmod(static_cast<double>(unixTime) / secondsPerDay, 2000.0));
    std::vector<float> streamers;
    streamers.reserve(angles + 1);
    for (int angle = 0; angle <= angles; ++angle) {
        const float radians = static_cast<float>(angle) / angles * 6.2831853F;
        const Vector3 direction{std::sin(radians), std::cos(radians), 0.0F};
        const float belt = 1.0F - 0.75F * direction.y * direction.y; // most stand over the equator
        const float wide = 0.5F + 0.9F * noise(direction * 1.7F + Vector3{0.0F, slow, 0.0F});
        const float rays = ridgedNoise(direction * 3.1F + Vector3{slow, 0.0F, 7.0F}, 3);
        const float fine = noise(direction * 26.0F + Vector3{slow * 3.0F, 3.0F, 0.0F});
        streamers.push_back(belt * std::max(wide, 0.05F) * (0.15F + 1.6F * std::pow(rays, 5.0F)) *
                            (1.0F + 0.35F * fine));
    }
    return streamers;
}

/// Gas thrown out: a bubble that grows as it leaves. Lengths in solar radii.
struct Outburst
{
    Vector3 direction;
    float front = 0.0F; ///< distance of its tip
    float radius = 0.0F;
    float light = 0.0F;
};

Outburst outburstOf(const Draw &draw, float ageSeconds)
{
    constexpr float solarRadiusKm = 695700.0F;
    const float kmPerSecond = 250.0F + 900.0F * draw(2) * draw(2);
    const float slope = 1.4F * (draw(4) - 0.5F); // from the equator
    const float side = draw(3) < 0.5F ? 1.0F : -1.0F;
    Outburst outburst;
    outburst.direction = {side * std::cos(slope), std::sin(slope), 0.0F};
    outburst.front = 1.0F + kmPerSecond * ageSeconds / solarRadiusKm;
    outburst.radius = (0.28F + 0.16F * draw(5)) * outburst.front;
    outburst.light = (0.35F + 0.65F * draw(6)) / (1.0F + 0.05F * outburst.front);
    return outburst;
}

/// Adds the bright front and the bright core.
void paintOutburst(LightField &field, const Outburst &outburst)
{
    const Vector3 &direction = outburst.direction;
    const Vector3 centre = direction * (outburst.front - outburst.radius);
    const LightField::Box box = field.boxAround(centre.x, centre.y, 1.1F * outburst.radius);
    field.visit(box, [&](float &light, float x, float y) {
        const Vector3 away = (Vector3{x, y, 0.0F} - centre) * (1.0F / outburst.radius);
        const float place = std::sqrt(dot(away, away));
        if (place > 1.1F)
            return;
        const Vector3 behind = away + direction * 0.35F;
        const float shell = std::max(1.0F - std::fabs(place - 0.9F) * 5.0F, 0.0F);
        const float core = std::max(1.0F - std::sqrt(dot(behind, behind)) * 3.0F, 0.0F);
        const float ahead = std::max(0.45F + 0.55F * dot(away, direction), 0.0F);
        light += outburst.light *
                 (0.75F * shell * shell * ahead + 0.25F * core + (place < 0.9F ? 0.05F : 0.0F));
    });
}

void paintOutbursts(LightField &field, qint64 unixTime, const Optics &optics)
{
    constexpr double spacing = 8.0 * secondsPerHour;
    constexpr int kept = 12; // four days, in which the slowest leaves the widest field
    const auto last = static_cast<qint64>(static_cast<double>(unixTime) / spacing);
    for (qint64 number = last - kept; number <= last; ++number) {
        const Draw draw(hashOf(0xcaf, static_cast<quint64>(number)));
        const double age = static_cast<double>(unixTime) -
                           (static_cast<double>(number) + static_cast<double>(draw(0))) * spacing;
        const Outburst outburst = outburstOf(draw, static_cast<float>(age));
        if (age > 0.0 && outburst.front - 2.0F * outburst.radius < optics.edge)
            paintOutburst(field, outburst);
    }
}

/// By the occulter, by the arm that holds it, towards the lower left, or by the field's edge.
bool isHidden(float x, float y, const Optics &optics)
{
    constexpr float cosine = -0.82F;
    constexpr float sine = -0.57F;
    const float distance = std::sqrt(x * x + y * y);
    const bool isBehindArm = optics.hasPylon && x * cosine + y * sine > 0.0F &&
                             std::fabs(y * cosine - x * sine) < 0.3F + 0.055F * distance;
    return distance < optics.occulter || distance > optics.edge || isBehindArm;
}

/// Stars pass behind the Sun from left to right, a degree a day.
void paintStars(LightField &field, qint64 unixTime, const Optics &optics)
{
    constexpr double radiiPerDay = 3.7;
    const double span = 2.4 * static_cast<double>(optics.edge);
    for (int star = 0; star < optics.stars; ++star) {
        const Draw draw(0x57a2 + static_cast<quint64>(star));
        const double travelled =
            static_cast<double>(unixTime) / secondsPerDay * radiiPerDay / span +
            static_cast<double>(draw(0));
        const float x = static_cast<float>((travelled - std::floor(travelled) - 0.5) * span);
        const float y = (draw(1) - 0.5F) * static_cast<float>(span);
        const float brightness = 0.1F + 0.9F * std::pow(draw(2), 8.0F);
        if (!isHidden(x, y, optics))
            field.addSpot(x, y,
                          (1.2F + 1.6F * brightness * brightness) /
                              static_cast<float>(field.disk().radius),
                          1.8F * brightness);
    }
}

} // namespace

void paintCoronagraph(LightField &field, qint64 unixTime, const Optics &optics)
{
    paintOutbursts(field, unixTime, optics);
    const std::vector<float> streamers = streamersAt(unixTime);
    const float outflow =
        0.5F * static_cast<float>(std::fmod(static_cast<double>(unixTime) / secondsPerHour, 500.0));
    const float start = std::log(optics.occulter);
    const auto streamerAt = [&streamers](float x, float y) {
        const float place = (turnsOf(x, y) + 0.5F) * static_cast<float>(angles);
        const size_t angle = (static_cast<size_t>(place) + angles / 2) % angles;
        const float across = place - std::floor(place);
        return streamers[angle] + (streamers[angle + 1] - streamers[angle]) * across;
    };
    const LightField::Box box = field.boxAround(0.0F, 0.0F, 1e4F);
    field.visit(box, [&](float &light, float x, float y) {
        if (isHidden(x, y, optics)) {
            light = 0.0F;
            return;
        }
        const float distance = std::sqrt(x * x + y * y);
        const float depth = std::log(distance);
        const float fall = std::exp(optics.falloff * (start - depth));
        // Blobs leave along the streamers.
        const float blobs =
            noise({6.0F * x / distance, 6.0F * y / distance, 3.0F * depth - outflow});
        light = light * std::sqrt(fall) * (0.8F + 0.5F * blobs) +
                optics.background * (0.45F + 0.75F * fall) +
                fall * streamerAt(x, y) * (1.0F + 0.3F * blobs);
    });
    paintStars(field, unixTime, optics);
}

} // namespace Simulator
