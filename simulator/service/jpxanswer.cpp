#include "simulator/archive/archive.h"
#include "simulator/archive/servicetime.h"
#include "simulator/service/endpoints.h"
#include "simulator/service/query.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace Simulator {

namespace {

constexpr int frameLimit = 1000;

/// What a frame index is asked for; times in seconds since 1970.
struct FrameQuery
{
    int sourceId;
    qint64 start;
    qint64 end;
    qint64 cadence; ///< not positive: every image
    bool isLinked;
};

/// Why the window holds no image; null when it may hold one.
QString noDataText(const Archive &archive, const FrameQuery &query)
{
    const ArchiveSource *source = archive.find(query.sourceId);
    const auto text = [source](const char *side, qint64 time) {
        return QStringLiteral("No %1 data is available on or %2 %3.")
            .arg(source ? source->nickname : QString(), QLatin1String(side), requestTimeText(time));
    };
    // The check of the window looks for the id itself and so finds nothing for a group.
    const bool isGroup = source && source->groupedSourceId >= 0;
    if (isGroup || !archive.atOrAfter(query.sourceId, query.start))
        return text("after", query.start);
    return archive.atOrBefore(query.sourceId, query.end) ? QString() : text("before", query.end);
}

QVector<qint64> everyImage(const Archive &archive, int sourceId, qint64 first, qint64 last)
{
    QVector<qint64> times;
    for (auto image = archive.atOrAfter(sourceId, first); image && image->unixTime <= last;
         image = archive.atOrAfter(sourceId, image->unixTime + 1))
        times.append(image->unixTime);
    return times;
}

/**
 * Images at @p cadence, counted back from @p last; ascending.
 *
 * Neither a list of all images nor an even grid: each step takes the nearest image, a repeat of the
 * step before is dropped, and the first image comes in front.
 */
QVector<qint64> resampled(const Archive &archive, int sourceId, qint64 first, qint64 last,
                          qint64 cadence)
{
    const qint64 steps =
        std::min<qint64>((last - first + cadence - 1) / cadence, frameLimit); // none: one image
    QVector<qint64> times;
    for (qint64 step = 0; step < steps; ++step) {
        const auto image = archive.nearest(sourceId, last - step * cadence);
        if (image && (times.isEmpty() || times.constLast() != image->unixTime))
            times.append(image->unixTime);
    }
    if (!times.isEmpty() && times.constLast() != first)
        times.append(first);
    std::reverse(times.begin(), times.end());
    return times;
}

QString cappedText(qint64 cadence)
{
    return QStringLiteral("Movie cadence has been changed to one image every %1 seconds between "
                          "your requested start and end dates in order to avoid exceeding the "
                          "maximum of %2 frames allowed per request.")
        .arg(cadence)
        .arg(frameLimit);
}

/// "jpips://helioviewer.org:8090/movies/GOES_SUVI_195_F..._T..._B60L.jpx"
QString movieUri(QString path, const FrameQuery &query)
{
    const auto fileTime = [](qint64 time) {
        return requestTimeText(time).replace(QLatin1Char(':'), QLatin1Char('.'));
    };
    path.replace(QLatin1Char('/'), QLatin1Char('_')).replace(QLatin1Char(' '), QLatin1Char('_'));
    const QString cadence =
        query.cadence > 0 ? QStringLiteral("B%1").arg(query.cadence) : QString();
    return QStringLiteral("jpips://helioviewer.org:8090/movies/%1_F%2_T%3%4%5.jpx")
        .arg(path, fileTime(query.start), fileTime(query.end), cadence,
             query.isLinked ? QStringLiteral("L") : QString());
}

Answer frameIndex(const Archive &archive, const FrameQuery &query)
{
    const QString noData = noDataText(archive, query);
    if (!noData.isEmpty())
        return jpxErrorObject(noData);
    const qint64 first = archive.atOrAfter(query.sourceId, query.start)->unixTime;
    const qint64 last = archive.atOrBefore(query.sourceId, query.end)->unixTime;
    const bool isCapped = query.cadence > 0 && last - first > frameLimit * query.cadence;
    const qint64 cadence = isCapped ? (last - first) / frameLimit : query.cadence;
    const QVector<qint64> times = cadence > 0
                                      ? resampled(archive, query.sourceId, first, last, cadence)
                                      : everyImage(archive, query.sourceId, first, last);
    if (times.isEmpty())
        return jpxErrorObject(QStringLiteral("Error encountered during JPX creation: No images "
                                             "were found for the requested time range."));
    QJsonArray frames;
    for (const qint64 time : times)
        frames.append(time);
    return jsonAnswer(
        {{QStringLiteral("message"), isCapped ? QJsonValue(cappedText(cadence)) : QJsonValue()},
         {QStringLiteral("uri"), movieUri(archive.find(query.sourceId)->path, query)},
         {QStringLiteral("frames"), frames}});
}

} // namespace

Answer jpxAnswer(const Archive &archive, const QUrlQuery &query)
{
    QueryReader reader(query);
    const FrameQuery asked{
        static_cast<int>(reader.integer(QStringLiteral("sourceId"))),
        reader.time(QStringLiteral("startTime")), reader.time(QStringLiteral("endTime")),
        reader.integer(QStringLiteral("cadence"), 0), reader.boolean(QStringLiteral("linked"))};
    reader.boolean(QStringLiteral("jpip"));
    reader.boolean(QStringLiteral("verbose"));
    return reader.complaint().isEmpty() ? frameIndex(archive, asked)
                                        : pageOfError(reader.complaint());
}

} // namespace Simulator
