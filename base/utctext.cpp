#include "base/utctext.h"

#include <QLocale>

namespace {

const QString &storedPattern()
{
    static const QString pattern = QStringLiteral("yyyy-MM-dd'T'HH:mm:ss'Z'");
    return pattern;
}

/// QDateTime itself would use the digits of the system's language, which no parser expects.
QString inPlainDigits(const QDateTime &time, const QString &pattern)
{
    return QLocale::c().toString(time.toUTC(), pattern);
}

} // namespace

QString UtcText::toText(const QDateTime &time)
{
    return time.toUTC().toString(Qt::ISODate); // as the pattern, without its parser
}

QDateTime UtcText::fromText(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return {};
    QDateTime time = QDateTime::fromString(trimmed, Qt::ISODateWithMs);
    if (!time.isValid())
        time = QDateTime::fromString(trimmed, Qt::ISODate);
    if (!time.isValid()) {
        time = QDateTime::fromString(trimmed, storedPattern());
        time.setTimeSpec(Qt::UTC); // the Z of the pattern is a literal to Qt
    }
    return time.toUTC();
}

QDateTime UtcText::wholeSecond(const QDateTime &time)
{
    return time.addMSecs(-time.time().msec());
}

QString UtcText::toOverlayText(const QDateTime &time)
{
    return inPlainDigits(time, QStringLiteral("yyyy-MM-dd HH:mm:ss 'UTC'"));
}

QString UtcText::toDisplayText(const QDateTime &time)
{
    return inPlainDigits(time, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QString UtcText::toFolderText(const QDateTime &time)
{
    return inPlainDigits(time, QStringLiteral("yyyyMMdd_HHmmss"));
}

QString UtcText::signedDelta(qint64 seconds)
{
    const QString number = QString::number(seconds);
    return seconds < 0 ? number : QLatin1Char('+') + number;
}
