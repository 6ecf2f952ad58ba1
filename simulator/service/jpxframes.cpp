#include "simulator/service/jpxframes.h"

#include "simulator/archive/archive.h"
#include "simulator/archive/servicetime.h"

#include <algorithm>

namespace Simulator {

namespace {

QString noDataText(const ArchiveSource *source, const QString &side, qint64 unixTime)
{
    const QString nickname = source ? source->nickname : QString();
    return QStringLiteral("No %1 data is available on or %2 %3.")
        .arg(nickname, side, requestTimeText(unixTime));
}

QString cappedText(qint64 cadenceSeconds)
{
    return QStringLiteral("Movie cadence has been changed to one image every %1 seconds between "
                          "your requested start and end dates in order to avoid exceeding the "
                          "maximum of %2 frames allowed per request.")
        .arg(cadenceSeconds)
        .arg(jpxFrameLimit);
}

/// @p steps images counted back from @p last, each the nearest to its mark, ascending.
QVector<qint64> resampled(const Archive &archive, int sourceId, qint64 first, qint64 last,
                          qint64 cadenceSeconds, qint64 steps)
{
    QVector<qint64> times;
    for (qint64 step = 0; step < steps; ++step) {
        const auto image = archive.nearest(sourceId, last - step * cadenceSeconds);
        if (image && (times.isEmpty() || times.constLast() != image->unixTime))
            times.append(image->unixTime);
    }
    if (!times.isEmpty() && times.constLast() != first)
        times.append(first);
    std::reverse(times.begin(), times.end());
    return times;
}

} // namespace

JpxFrames jpxFrames(const Archive &archive, int sourceId, qint64 startUnixTime, qint64 endUnixTime,
                    int cadenceSeconds)
{
    JpxFrames frames;
    const ArchiveSource *source = archive.find(sourceId);
    // The check of the window looks for the id itself and so finds nothing for a group.
    const bool isGroup = source && source->groupedSourceId >= 0;
    const auto first = archive.atOrAfter(sourceId, startUnixTime);
    const auto last = archive.atOrBefore(sourceId, endUnixTime);
    if (isGroup || !first)
        frames.error = noDataText(source, QStringLiteral("after"), startUnixTime);
    else if (!last)
        frames.error = noDataText(source, QStringLiteral("before"), endUnixTime);
    if (!frames.error.isEmpty())
        return frames;

    qint64 cadence = std::max(cadenceSeconds, 1);
    const qint64 span = last->unixTime - first->unixTime;
    qint64 steps = span > 0 ? (span + cadence - 1) / cadence : 0;
    if (steps > jpxFrameLimit) {
        steps = jpxFrameLimit;
        cadence = span / jpxFrameLimit;
        frames.message = cappedText(cadence);
    }
    frames.unixTimes =
        resampled(archive, sourceId, first->unixTime, last->unixTime, cadence, steps);
    if (frames.unixTimes.isEmpty())
        frames.error = QStringLiteral("Error encountered during JPX creation: No images were found "
                                      "for the requested time range.");
    return frames;
}

} // namespace Simulator
