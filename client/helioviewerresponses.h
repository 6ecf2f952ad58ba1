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
    QString message;              ///< a remark of the service, mostly empty
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
 * @return nothing when it is no JSON object (an error page, an array, a body cut off); then
 *         @p errorText, which may be null, tells why
 */
std::optional<QJsonObject> parseObject(const QByteArray &answer, QString *errorText = nullptr);

/**
 * The frame times in "frames", whole seconds since 1970 as numbers or as texts of digits, and
 * "message". An element that is no positive number is left out; without "frames" (that is how the
 * service reports an empty interval) there are none.
 */
FrameIndex frameIndex(const QJsonObject &answer);

/**
 * "id", a number or a text of digits, and "date", which the service writes as
 * "2024-05-01 12:00:07" in UTC; ISO 8601 is understood as well, and UTC where it names no zone.
 *
 * @return nothing when the id is not positive or the date cannot be read; then @p errorText, which
 *         may be null, says so
 */
std::optional<ClosestImage> closestImage(const QJsonObject &answer, QString *errorText = nullptr);

} // namespace HelioviewerResponses
