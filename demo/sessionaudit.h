#pragma once

#include "demo/expectation.h"
#include "demo/filmprobe.h"
#include "session/acquisitionsettings.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// What a session left behind of one datasource.
struct SourceAudit
{
    DataSource source;
    RequestCounts counts; ///< of the manifest's rows
    QString filmFile;     ///< absolute
    std::optional<Film> film;
    QStringList faults; ///< one sentence each
};

/**
 * Looks at a finished session's files as a stranger would, and says what is wrong with them.
 */
namespace SessionAudit {

/// How the requests of each datasource ended, by sourceId, as manifest.csv tells it.
QHash<int, RequestCounts> ledgerCounts(const QString &manifestFile);

/// One record for each datasource of the session; @p expected is what each must come to.
QVector<SourceAudit> audit(const QString &sessionDirectory, const AcquisitionSettings &settings,
                           const QVector<RequestCounts> &expected);

} // namespace SessionAudit
