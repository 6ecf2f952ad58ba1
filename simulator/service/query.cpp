#include "simulator/service/query.h"

#include "simulator/archive/servicetime.h"

namespace Simulator {

void QueryReader::complain(const QString &text)
{
    if (m_complaint.isEmpty())
        m_complaint = text;
}

QString QueryReader::value(const QString &name) const
{
    return m_query.queryItemValue(name, QUrl::FullyDecoded);
}

QString QueryReader::required(const QString &name)
{
    QString text = value(name);
    if (text.isEmpty())
        complain(QStringLiteral("No value set for required parameter \"%1\".").arg(name));
    return text;
}

qint64 QueryReader::time(const QString &name)
{
    const std::optional<qint64> time = parseRequestTime(required(name));
    if (!time)
        complain(QStringLiteral("Invalid date string. Please enter a date of the form "
                                "2003-10-06T00:00:00.000Z"));
    return time.value_or(0);
}

qint64 QueryReader::integer(const QString &name)
{
    required(name);
    return integer(name, 0);
}

qint64 QueryReader::integer(const QString &name, qint64 fallback)
{
    const QString text = value(name);
    if (text.isEmpty())
        return fallback;
    bool ok = false;
    const qint64 number = text.toLongLong(&ok);
    if (!ok)
        complain(
            QStringLiteral("Invalid value for %1. Please specify an integer value.").arg(name));
    return number;
}

bool QueryReader::boolean(const QString &name)
{
    const QString text = value(name).toLower();
    const bool isTrue = text == QLatin1String("true") || text == QLatin1String("1");
    const bool isFalse =
        text == QLatin1String("false") || text == QLatin1String("0") || text.isEmpty();
    if (!isTrue && !isFalse)
        complain(QStringLiteral("Invalid value for %1. Please specify a boolean value.").arg(name));
    return isTrue;
}

} // namespace Simulator
