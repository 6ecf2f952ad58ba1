#pragma once

#include <QJsonObject>
#include <QStringList>

#include <optional>

class QDir;
struct SessionLedger;

/// A descriptor made from what is left of a session, and where its values come from.
struct RecoveredDescriptor
{
    QJsonObject json;
    QStringList origins; ///< a line for each setting: its value, and where it was found
};

namespace SessionRecovery {

/**
 * The descriptor of a @p session that ended without one, derived from its manifest and folders.
 *
 * The interval is that of the folder's name, else that of the requests; the cadence is the shortest
 * step of any datasource; the width is that of the widest original. Whatever else the manifest does
 * not contain has the defaults of a new session. The session counts as canceled, and "recovered" is
 * true.
 *
 * @return nothing when the manifest names no datasource
 */
std::optional<RecoveredDescriptor> describe(const QDir &session, const SessionLedger &ledger);

} // namespace SessionRecovery
