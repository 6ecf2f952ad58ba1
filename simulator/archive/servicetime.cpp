#include "simulator/archive/servicetime.h"

#include <QDateTime>
#include <QLocale>
#include <QRegularExpression>

namespace Simulator {

std::optional<qint64> parseArchiveTime(const QString &text)
{
    // Each part on its own: as one text Qt takes it for local time, in which an hour of spring is
    // missing.
    const QDate date = QDate::fromString(text.left(10), QStringLiteral("yyyy-MM-dd"));
    const QTime timeOfDay = QTime::fromString(text.mid(10), QStringLiteral(" HH:mm:ss"));
    if (!date.isValid() || !timeOfDay.isValid())
        return std::nullopt;
    return QDateTime(date, timeOfDay, Qt::UTC).toSecsSinceEpoch();
}

QString archiveTimeText(qint64 unixTime)
{
    return QLocale::c().toString(QDateTime::fromSecsSinceEpoch(unixTime, Qt::UTC),
                                 QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

std::optional<qint64> parseRequestTime(const QString &text)
{
    static const QRegularExpression pattern(
        QStringLiteral("^(\\d{4})[-/](\\d\\d)[-/](\\d\\d)T(\\d\\d:\\d\\d:\\d\\d)(\\.\\d{1,6})?Z$"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    return parseArchiveTime(
        QStringLiteral("%1-%2-%3 %4")
            .arg(match.captured(1), match.captured(2), match.captured(3), match.captured(4)));
}

QString requestTimeText(qint64 unixTime)
{
    return QDateTime::fromSecsSinceEpoch(unixTime, Qt::UTC).toString(Qt::ISODate);
}

} // namespace Simulator
