#pragma once

#include <QDateTime>

#include <optional>

class QString;
struct SessionLedger;

/// What a session covers; both ends belong to it.
struct SessionInterval
{
    QDateTime startUtc;
    QDateTime endUtc;
};

namespace SessionIntervals {

/// That of a session folder's name, as "20240510_060000__20240510_080000_2"; nothing for others.
std::optional<SessionInterval> fromFolderName(const QString &name);

/// From the first to the last request; nothing when there is none with a time.
std::optional<SessionInterval> fromRequests(const SessionLedger &ledger);

} // namespace SessionIntervals
