#include "sessiontool/sessioninterval.h"

#include "sessiontool/sessionledger.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

QDateTime timeOf(const QString &text)
{
    QDateTime time = QDateTime::fromString(text, QStringLiteral("yyyyMMdd_HHmmss"));
    time.setTimeSpec(Qt::UTC);
    return time;
}

} // namespace

std::optional<SessionInterval> SessionIntervals::fromFolderName(const QString &name)
{
    static const QRegularExpression pattern(
        QStringLiteral("^([0-9]{8}_[0-9]{6})__([0-9]{8}_[0-9]{6})(_[0-9]+)?$"));
    const QRegularExpressionMatch match = pattern.match(name);
    const SessionInterval interval{timeOf(match.captured(1)), timeOf(match.captured(2))};
    const bool isInterval = interval.startUtc.isValid() && interval.endUtc.isValid() &&
                            interval.startUtc <= interval.endUtc;
    return isInterval ? std::make_optional(interval) : std::nullopt;
}

std::optional<SessionInterval> SessionIntervals::fromRequests(const SessionLedger &ledger)
{
    std::optional<qint64> first;
    std::optional<qint64> last;
    for (const SourceLedger &source : ledger.sources) {
        for (const qint64 seconds : source.requestedSeconds) {
            first = std::min(first.value_or(seconds), seconds);
            last = std::max(last.value_or(seconds), seconds);
        }
    }
    if (!first)
        return std::nullopt;
    return SessionInterval{QDateTime::fromSecsSinceEpoch(*first, Qt::UTC),
                           QDateTime::fromSecsSinceEpoch(*last, Qt::UTC)};
}
