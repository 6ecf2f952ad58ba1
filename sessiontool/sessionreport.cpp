#include "sessiontool/sessionreport.h"

#include "sessiontool/storeddescriptor.h"

#include <QDir>
#include <QSet>

namespace {

SessionReport::State stateOf(const StoredDescriptor &descriptor)
{
    if (descriptor.recovered)
        return SessionReport::State::Recovered;
    return descriptor.canceled ? SessionReport::State::Canceled : SessionReport::State::Completed;
}

std::optional<SessionInterval> intervalOf(const StoredDescriptor &descriptor, const QDir &session,
                                          const SessionLedger &ledger)
{
    if (descriptor.startUtc.isValid() && descriptor.endUtc.isValid())
        return SessionInterval{descriptor.startUtc, descriptor.endUtc};
    const std::optional<SessionInterval> named =
        SessionIntervals::fromFolderName(session.dirName());
    return named ? named : SessionIntervals::fromRequests(ledger);
}

/// Those of the descriptor first; it also knows datasources that no request was made for.
QVector<SourceLedger> inOrder(const SessionLedger &ledger, const StoredDescriptor &descriptor)
{
    QVector<SourceLedger> sources;
    QSet<int> taken;
    for (const DescribedSource &described : descriptor.sources) {
        if (taken.contains(described.sourceId))
            continue;
        taken.insert(described.sourceId);
        SourceLedger source = ledger.source(described.sourceId);
        source.sourceId = described.sourceId;
        if (source.nickname.isEmpty())
            source.nickname = described.nickname;
        sources.append(source);
    }
    for (const SourceLedger &source : ledger.sources) {
        if (!taken.contains(source.sourceId))
            sources.append(source);
    }
    return sources;
}

} // namespace

QString SessionReports::toText(SessionReport::State state)
{
    switch (state) {
    case SessionReport::State::Completed:
        return QStringLiteral("completed");
    case SessionReport::State::Canceled:
        return QStringLiteral("canceled");
    case SessionReport::State::Recovered:
        return QStringLiteral("recovered");
    case SessionReport::State::NoDescriptor:
        break;
    }
    return QStringLiteral("no-descriptor");
}

std::optional<SessionReport> SessionReports::make(const QDir &session, QString *errorText)
{
    const std::optional<SessionLedger> ledger = SessionLedgers::read(session, errorText);
    if (!ledger)
        return std::nullopt;
    SessionReport report;
    report.directory = session.absolutePath();
    QString reason;
    const std::optional<StoredDescriptor> descriptor = StoredDescriptors::load(session, &reason);
    if (descriptor)
        report.state = stateOf(*descriptor);
    else
        report.findings += reason;
    report.findings += ledger->remarks;
    const StoredDescriptor known = descriptor.value_or(StoredDescriptor());
    report.interval = intervalOf(known, session, *ledger);
    const QVector<SourceLedger> sources = inOrder(*ledger, known);
    for (const SourceLedger &source : sources) {
        const int step = source.stepSeconds();
        report.sources.append({source, step, SessionGaps::find(source, step)});
    }
    return report;
}
