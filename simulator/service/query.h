#pragma once

#include <QString>
#include <QUrlQuery>

namespace Simulator {

/**
 * Reads the parameters of one request and remembers the first complaint.
 *
 * The service names the first bad parameter only, in these words.
 */
class QueryReader final
{
public:
    explicit QueryReader(const QUrlQuery &query) : m_query(query) {}

    /// What is wrong with the request; empty when nothing is.
    const QString &complaint() const { return m_complaint; }

    /// Seconds since 1970; 0 and a complaint when missing or malformed.
    qint64 time(const QString &name);
    /// 0 and a complaint when missing or malformed.
    qint64 integer(const QString &name);
    /// The fallback when missing; a complaint only when malformed.
    qint64 integer(const QString &name, qint64 fallback);
    /// False when missing.
    bool boolean(const QString &name);

private:
    QString value(const QString &name) const;
    QString required(const QString &name);
    void complain(const QString &text);

    QUrlQuery m_query;
    QString m_complaint;
};

} // namespace Simulator
