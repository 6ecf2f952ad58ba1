#pragma once

#include <QString>

class QDateTime;

/**
 * The URLs of the four requests, fully percent-encoded.
 *
 * @p apiBase is without trailing slash. The service requires times in UTC with a final "Z" and
 * ignores unknown parameters.
 */
namespace HelioviewerRequests {

QString dataSourcesUrl(const QString &apiBase);

/// @p cadenceSeconds below 1 is sent as 1.
QString jpxUrl(const QString &apiBase, int sourceId, const QDateTime &startUtc,
               const QDateTime &endUtc, int cadenceSeconds);

QString closestImageUrl(const QString &apiBase, int sourceId, const QDateTime &requestedUtc);

/// @p widthPx is the width of the rendered picture; the service never enlarges.
QString renderedImageUrl(const QString &apiBase, qint64 imageId, int widthPx);

} // namespace HelioviewerRequests
