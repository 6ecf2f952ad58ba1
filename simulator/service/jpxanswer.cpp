#include "simulator/archive/archive.h"
#include "simulator/archive/servicetime.h"
#include "simulator/service/endpoints.h"
#include "simulator/service/jpxframes.h"
#include "simulator/service/jsontext.h"

namespace Simulator {

namespace {

QString fileTimeText(qint64 unixTime)
{
    return requestTimeText(unixTime).replace(QLatin1Char(':'), QLatin1Char('.'));
}

/// "jpips://helioviewer.org:8090/movies/GOES_SUVI_195_F..._T..._B60L.jpx"
QString movieUri(const QString &path, qint64 startUnixTime, qint64 endUnixTime, int cadenceSeconds,
                 bool linked)
{
    QString name = path;
    name.replace(QLatin1Char('/'), QLatin1Char('_')).replace(QLatin1Char(' '), QLatin1Char('_'));
    const QString cadence =
        cadenceSeconds > 0 ? QStringLiteral("B%1").arg(cadenceSeconds) : QString();
    return QStringLiteral("jpips://helioviewer.org:8090/movies/%1_F%2_T%3%4%5.jpx")
        .arg(name, fileTimeText(startUnixTime), fileTimeText(endUnixTime), cadence,
             linked ? QStringLiteral("L") : QString());
}

QByteArray frameIndexText(const JpxFrames &frames, const QString &uri)
{
    JsonText json;
    json.beginObject().key(QStringLiteral("message"));
    if (frames.message.isEmpty())
        json.null();
    else
        json.value(frames.message);
    json.member(QStringLiteral("uri"), uri).key(QStringLiteral("frames")).beginArray();
    for (const qint64 time : frames.unixTimes)
        json.value(time);
    return json.endArray().endObject().text();
}

} // namespace

Answer jpxAnswer(const Archive &archive, const Query &query)
{
    QueryReader reader(query);
    const qint64 start = reader.time(QStringLiteral("startTime"));
    const qint64 end = reader.time(QStringLiteral("endTime"));
    const int sourceId = reader.integer(QStringLiteral("sourceId"));
    const int cadence = reader.integer(QStringLiteral("cadence"), 0);
    const bool linked = reader.boolean(QStringLiteral("linked"), false);
    reader.boolean(QStringLiteral("jpip"), false);
    reader.boolean(QStringLiteral("verbose"), false);
    if (!reader.complaint().isEmpty())
        return pageOfError(reader.complaint());

    const JpxFrames frames = jpxFrames(archive, sourceId, start, end, cadence);
    if (!frames.error.isEmpty())
        return jpxErrorObject(frames.error);
    const QString path = archive.find(sourceId)->path;
    return jsonAnswer(frameIndexText(frames, movieUri(path, start, end, cadence, linked)));
}

} // namespace Simulator
