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
 * Checks the files of a finished session, independently of the engine, and reports what is wrong.
 */
namespace SessionAudit {

/// How the requests of each datasource ended, by sourceId, according to manifest.csv.
QHash<int, RequestCounts> ledgerCounts(const QString &manifestFile);

/// One record for each datasource of the session; @p expected is the result that each must have.
QVector<SourceAudit> audit(const QString &sessionDirectory, const AcquisitionSettings &settings,
                           const QVector<RequestCounts> &expected);

} // namespace SessionAudit
