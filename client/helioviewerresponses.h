#pragma once

#include <QDateTime>
#include <QString>
#include <QVector>

#include <optional>

class QByteArray;
class QJsonObject;

/// What the service's answers say.
namespace HelioviewerResponses {

/// The answer to getJPX.
struct FrameIndex
{
    QVector<QDateTime> framesUtc; ///< in the order given, repeats included
    QString message;              ///< a remark of the service, usually empty
};

/// The answer to getClosestImage.
struct ClosestImage
{
    qint64 imageId = 0;
    QDateTime actualUtc;
};

/**
 * The object that @p answer holds.
 *
 * @return nothing when it is not a JSON object (an error page, an array, a truncated body);
 *         @p errorText, which may be null, then says why
 */
std::optional<QJsonObject> parseObject(const QByteArray &answer, QString *errorText = nullptr);

/**
 * The frame times in "frames", whole seconds since 1970 as numbers or as texts of digits, and
 * "message". Elements that are not positive numbers are left out; a missing "frames", by which the
 * service reports an empty interval, gives none.
 */
FrameIndex frameIndex(const QJsonObject &answer);

/**
 * "id", a number or a text of digits, and "date", which the service writes as
 * "2024-05-01 12:00:07" in UTC; ISO 8601 is accepted too, and is UTC if it names no zone.
 *
 * @return nothing when the id is not positive or the date cannot be read; then @p errorText, which
 *         may be null, says so
 */
std::optional<ClosestImage> closestImage(const QJsonObject &answer, QString *errorText = nullptr);

} // namespace HelioviewerResponses
