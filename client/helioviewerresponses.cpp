#include "client/helioviewerresponses.h"

#include "base/errortext.h"
#include "base/jsonfile.h"

#include <QJsonArray>
#include <QJsonObject>

#include <limits>

namespace {

/// Seconds as a number, cut off, or as a text of digits; 0 for anything that is no time.
qint64 wholeSeconds(const QJsonValue &value)
{
    constexpr qint64 limit = std::numeric_limits<qint64>::max() / 1000; // Qt counts milliseconds
    if (value.isString()) {
        const qint64 seconds = value.toString().toLongLong();
        return seconds < limit ? seconds : 0;
    }
    const double seconds = value.toDouble();
    return seconds >= 1.0 && seconds < static_cast<double>(limit) ? static_cast<qint64>(seconds)
                                                                  : 0;
}

qint64 imageId(const QJsonValue &value)
{
    const bool readable = value.isString() || value.isDouble();
    return readable ? value.toVariant().toLongLong() : 0;
}

/**
 * Reads the service's own form and ISO 8601; without a zone the time is UTC.
 *
 * It must not pass through local time: that would lose the hour which the change to daylight
 * saving leaves out, on every computer in such a zone.
 */
QDateTime imageTime(const QString &text)
{
    constexpr int dateLength = 10;
    const QString clock = text.mid(dateLength);
    const bool namesZone = clock.contains(QLatin1Char('+')) || clock.contains(QLatin1Char('-')) ||
                           clock.endsWith(QLatin1Char('Z'), Qt::CaseInsensitive);
    const bool complete = namesZone || clock.isEmpty();
    QDateTime time =
        QDateTime::fromString(complete ? text : text + QLatin1Char('Z'), Qt::ISODateWithMs);
    if (time.timeSpec() == Qt::LocalTime)
        time.setTimeSpec(Qt::UTC); // a date alone
    return time.toUTC();
}

} // namespace

std::optional<QJsonObject> HelioviewerResponses::parseObject(const QByteArray &answer,
                                                             QString *errorText)
{
    QString reason;
    std::optional<QJsonObject> object = JsonFile::parse(answer, &reason);
    if (!object)
        ErrorText::fail(errorText, QStringLiteral("Invalid JSON: %1").arg(reason));
    return object;
}

HelioviewerResponses::FrameIndex HelioviewerResponses::frameIndex(const QJsonObject &answer)
{
    FrameIndex index;
    index.message = answer.value(QLatin1String("message")).toString();
    const QJsonArray frames = answer.value(QLatin1String("frames")).toArray();
    index.framesUtc.reserve(frames.size());
    for (const QJsonValue &frame : frames) {
        const qint64 seconds = wholeSeconds(frame);
        if (seconds >= 1)
            index.framesUtc.append(QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC));
    }
    return index;
}

std::optional<HelioviewerResponses::ClosestImage>
HelioviewerResponses::closestImage(const QJsonObject &answer, QString *errorText)
{
    const ClosestImage image{imageId(answer.value(QLatin1String("id"))),
                             imageTime(answer.value(QLatin1String("date")).toString())};
    if (image.imageId >= 1 && image.actualUtc.isValid())
        return image;
    return ErrorText::nothing(errorText,
                              QStringLiteral("Response does not contain a valid image id/date."));
}
