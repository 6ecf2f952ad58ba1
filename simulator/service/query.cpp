#include "simulator/service/query.h"

#include "simulator/archive/servicetime.h"

namespace Simulator {

std::optional<int> integerOf(const QString &text)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    return ok ? std::optional<int>(number) : std::nullopt;
}

void QueryReader::complain(const QString &text)
{
    if (m_complaint.isEmpty())
        m_complaint = text;
}

void QueryReader::refuse(const QString &name, const QString &kind)
{
    complain(QStringLiteral("Invalid value for %1. Please enter %2.").arg(name, kind));
}

QString QueryReader::required(const QString &name)
{
    QString value = m_query.value(name);
    if (value.isEmpty())
        complain(QStringLiteral("No value set for required parameter \"%1\".").arg(name));
    return value;
}

qint64 QueryReader::time(const QString &name)
{
    const std::optional<qint64> time = parseRequestTime(required(name));
    if (!time)
        refuse(name, QStringLiteral("a date of the form 2003-10-06T00:00:00Z"));
    return time.value_or(0);
}

int QueryReader::integer(const QString &name)
{
    required(name);
    return integer(name, 0);
}

qint64 QueryReader::longInteger(const QString &name)
{
    bool ok = false;
    const qint64 number = required(name).toLongLong(&ok);
    if (!ok)
        refuse(name, QStringLiteral("an integer"));
    return number;
}

int QueryReader::integer(const QString &name, int fallback)
{
    const QString value = m_query.value(name);
    if (value.isEmpty())
        return fallback;
    const std::optional<int> number = integerOf(value);
    if (!number)
        refuse(name, QStringLiteral("an integer"));
    return number.value_or(fallback);
}

double QueryReader::decimal(const QString &name, double fallback)
{
    const QString value = m_query.value(name);
    if (value.isEmpty())
        return fallback;
    bool ok = false;
    const double number = value.toDouble(&ok);
    if (!ok)
        refuse(name, QStringLiteral("a number"));
    return number;
}

bool QueryReader::boolean(const QString &name, bool fallback)
{
    const QString value = m_query.value(name);
    if (value.isEmpty())
        return fallback;
    const bool yes = value == QLatin1String("true") || value == QLatin1String("1");
    if (!yes && value != QLatin1String("false") && value != QLatin1String("0"))
        refuse(name, QStringLiteral("true or false"));
    return yes;
}

} // namespace Simulator
