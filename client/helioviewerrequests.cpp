#include "client/helioviewerrequests.h"

#include "base/utctext.h"
#include "client/operationnames.h"

#include <QPair>
#include <QUrl>
#include <QUrlQuery>
#include <QVector>

#include <algorithm>

namespace {

using QueryPairs = QVector<QPair<QString, QString>>;

QString requestUrl(const QString &apiBase, const QString &operation, const QueryPairs &pairs)
{
    QUrl url(QStringLiteral("%1/%2/").arg(apiBase, operation), QUrl::TolerantMode);
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
    return requestUrl(apiBase, OperationNames::getDataSources(), {});
}

QString HelioviewerRequests::jpxUrl(const QString &apiBase, int sourceId, const QDateTime &startUtc,
                                    const QDateTime &endUtc, int cadenceSeconds)
{
    return requestUrl(apiBase, OperationNames::getJpx(),
                      {
                          {QStringLiteral("startTime"), UtcText::toText(startUtc)},
                          {QStringLiteral("endTime"), UtcText::toText(endUtc)},
                          {QStringLiteral("sourceId"), QString::number(sourceId)},
                          {QStringLiteral("linked"), QStringLiteral("true")},
                          {QStringLiteral("jpip"), QStringLiteral("true")},
                          {QStringLiteral("verbose"), QStringLiteral("true")},
                          {QStringLiteral("cadence"), QString::number(std::max(1, cadenceSeconds))},
                      });
}

QString HelioviewerRequests::closestImageUrl(const QString &apiBase, int sourceId,
                                             const QDateTime &requestedUtc)
{
    return requestUrl(apiBase, OperationNames::getClosestImage(),
                      {
                          {QStringLiteral("date"), UtcText::toText(requestedUtc)},
                          {QStringLiteral("sourceId"), QString::number(sourceId)},
                      });
}

QString HelioviewerRequests::renderedImageUrl(const QString &apiBase, qint64 imageId, int widthPx)
{
    return requestUrl(apiBase, OperationNames::downloadImage(),
                      {
                          {QStringLiteral("id"), QString::number(imageId)},
                          {QStringLiteral("width"), QString::number(widthPx)},
                          {QStringLiteral("type"), QStringLiteral("png")},
                      });
}
