#pragma once

#include <QMap>
#include <QString>

#include <optional>

namespace Simulator {

/// The parameters of one request, decoded.
using Query = QMap<QString, QString>;

/// Plain decimal, as the service demands; none when it is anything else.
std::optional<int> integerOf(const QString &text);

/**
 * Reads the parameters of one request and remembers the first complaint.
 *
 * The service names the first bad parameter only.
 */
class QueryReader
{
public:
    explicit QueryReader(const Query &query) : m_query(query) {}

    /// What is wrong with the request; empty when nothing is.
    const QString &complaint() const { return m_complaint; }

    /// 0 and a complaint when missing or malformed.
    qint64 time(const QString &name);
    int integer(const QString &name);
    qint64 longInteger(const QString &name);
    /// The fallback when missing; a complaint only when malformed.
    int integer(const QString &name, int fallback);
    double decimal(const QString &name, double fallback);
    bool boolean(const QString &name, bool fallback);

private:
    QString required(const QString &name);
    void complain(const QString &text);
    void refuse(const QString &name, const QString &kind);

    const Query &m_query;
    QString m_complaint;
};

} // namespace Simulator
