#include "client/helioviewerrequests.h"

#include "base/utctext.h"

#include <QPair>
#include <QUrl>
#include <QUrlQuery>
#include <QVector>

namespace {

using QueryPairs = QVector<QPair<QString, QString>>;

QString requestUrl(const QString &address, const QueryPairs &pairs)
{
    QUrl url(address, QUrl::TolerantMode);
    if (!pairs.isEmpty()) {
        QUrlQuery query;
        query.setQueryItems(pairs.toList());
        url.setQuery(query);
    }
    return url.toString(QUrl::FullyEncoded);
}

} // namespace

QString HelioviewerRequests::dataSourcesUrl(const QString &apiBase)
{
    return requestUrl(apiBase + QLatin1String("/getDataSources/"), {});
}

QString HelioviewerRequests::jpxUrl(const QString &apiBase, int sourceId, const QDateTime &startUtc,
                                    const QDateTime &endUtc, int cadenceSeconds)
{
    return requestUrl(apiBase + QLatin1String("/getJPX/"),
                      {
                          {QStringLiteral("startTime"), UtcText::toText(startUtc)},
                          {QStringLiteral("endTime"), UtcText::toText(endUtc)},
                          {QStringLiteral("sourceId"), QString::number(sourceId)},
                          {QStringLiteral("linked"), QStringLiteral("true")},
                          {QStringLiteral("jpip"), QStringLiteral("true")},
                          {QStringLiteral("verbose"), QStringLiteral("true")},
                          {QStringLiteral("cadence"), QString::number(qMax(1, cadenceSeconds))},
                      });
}

QString HelioviewerRequests::closestImageUrl(const QString &apiBase, int sourceId,
                                             const QDateTime &requestedUtc)
{
    return requestUrl(apiBase + QLatin1String("/getClosestImage/"),
                      {
                          {QStringLiteral("date"), UtcText::toText(requestedUtc)},
                          {QStringLiteral("sourceId"), QString::number(sourceId)},
                      });
}

QString HelioviewerRequests::renderedImageUrl(const QString &apiBase, qint64 imageId, int widthPx)
{
    return requestUrl(apiBase + QLatin1String("/downloadImage/"),
                      {
                          {QStringLiteral("id"), QString::number(imageId)},
                          {QStringLiteral("width"), QString::number(widthPx)},
                          {QStringLiteral("type"), QStringLiteral("png")},
                      });
}
