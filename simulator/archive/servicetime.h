#pragma once

#include <QString>

#include <optional>

namespace Simulator {

/// "2010-06-02 00:05:36" (UTC) to seconds since 1970; none for any other text.
std::optional<qint64> parseArchiveTime(const QString &text);
QString archiveTimeText(qint64 unixTime);

/// A request's "2010-06-02T00:05:36[.ffffff]Z", "/" allowed for "-"; the "Z" is compulsory.
std::optional<qint64> parseRequestTime(const QString &text);
/// "2010-06-02T00:05:36Z"
QString requestTimeText(qint64 unixTime);

} // namespace Simulator
