#include "demo/expectation.h"

#include "base/runtimeconfig.h"
#include "session/acquisitionsettings.h"
#include "simulator/archive/archive.h"

#include <algorithm>
#include <set>
#include <vector>

namespace {

/// When the requests of a datasource are due, in seconds since 1970.
struct Rhythm
{
    qint64 first;
    qint64 step;
};

std::vector<qint64> picturesBetween(const Simulator::Archive &archive, int sourceId, qint64 from,
                                    qint64 to)
{
    std::vector<qint64> times;
    for (auto image = archive.atOrAfter(sourceId, from); image && image->unixTime <= to;
         image = archive.atOrAfter(sourceId, image->unixTime + 1))
        times.push_back(image->unixTime);
    return times;
}

qint64 usualSpacing(const std::vector<qint64> &times)
{
    std::vector<qint64> spacings;
    for (std::size_t i = 1; i < times.size(); ++i)
        spacings.push_back(times[i] - times[i - 1]);
    std::sort(spacings.begin(), spacings.end());
    return spacings.empty() ? 0 : spacings[spacings.size() / 2];
}

/// A sparse instrument is asked in step with its own pictures, all others as the user wants it.
Rhythm rhythmOf(const Simulator::Archive &archive, const DataSource &source,
                const AcquisitionSettings &settings)
{
    const qint64 start = settings.startUtc.toSecsSinceEpoch();
    const qint64 end = settings.endUtc.toSecsSinceEpoch();
    const qint64 window = std::min<qint64>(end, start + RuntimeConfig::preflightProbeSeconds());
    const auto times = picturesBetween(archive, source.sourceId, start, window);
    const qint64 spacing = usualSpacing(times);
    const bool isSparse = spacing > settings.cadenceSeconds;
    return isSparse ? Rhythm{times.front(), spacing} : Rhythm{start, settings.cadenceSeconds};
}

qint64 toleranceOf(const DataSource &source, const AcquisitionSettings &settings)
{
    if (source.path.contains(QLatin1String("/AIA/")))
        return RuntimeConfig::aiaMaxTimeErrorSeconds();
    if (source.path.contains(QLatin1String("/SUVI/")))
        return RuntimeConfig::suviMaxTimeErrorSeconds();
    return settings.maxTimeErrorSeconds;
}

} // namespace

RequestCounts Expectation::counts(const Simulator::Archive &archive, const DataSource &source,
                                  const AcquisitionSettings &settings)
{
    const Rhythm rhythm = rhythmOf(archive, source, settings);
    const qint64 tolerance = toleranceOf(source, settings);
    const qint64 end = settings.endUtc.toSecsSinceEpoch();
    RequestCounts counts;
    std::set<qint64> taken;
    for (qint64 time = rhythm.first; time <= end; time += rhythm.step) {
        ++counts.requested;
        const auto image = archive.nearest(source.sourceId, time);
        if (!image)
            ++counts.failed;
        else if (std::abs(image->unixTime - time) > tolerance)
            ++counts.rejected;
        else if (taken.insert(image->unixTime).second)
            ++counts.accepted;
        else
            ++counts.duplicates;
    }
    return counts;
}
