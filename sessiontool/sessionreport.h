#pragma once

#include "sessiontool/sessiongaps.h"
#include "sessiontool/sessioninterval.h"
#include "sessiontool/sessionledger.h"

class QDir;

/// One datasource of a report.
struct ReportedSource
{
    SourceLedger ledger;
    int stepSeconds = 0; ///< 0 when there are not two requests
    QVector<SessionGap> gaps;
};

/// The report on a session.
struct SessionReport
{
    enum class State {
        Completed,    ///< ran to its end
        Canceled,     ///< stopped before its end
        Recovered,    ///< was closed or killed; its descriptor was written later
        NoDescriptor, ///< has none that could be used
    };

    QString directory; ///< absolute
    State state = State::NoDescriptor;
    std::optional<SessionInterval> interval;
    QVector<ReportedSource> sources; ///< in the order of the descriptor, then of their first rows
    QStringList findings;            ///< what is wrong with the session's own two files
};

namespace SessionReports {

/// "completed", "canceled", "recovered" or "no-descriptor".
QString toText(SessionReport::State state);

/// Nothing when the manifest of @p session cannot be read; @p errorText then says why.
std::optional<SessionReport> make(const QDir &session, QString *errorText);

} // namespace SessionReports
