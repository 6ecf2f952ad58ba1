#pragma once

#include <QString>

#include <optional>

/// The two ways in which a function fails and tells its caller why.
namespace ErrorText {

/// Sets @p errorText, which may be null, to @p reason; returns false, for the caller to return.
inline bool fail(QString *errorText, const QString &reason)
{
    if (errorText)
        *errorText = reason;
    return false;
}

/// As fail(), where the result is a std::optional.
inline std::nullopt_t nothing(QString *errorText, const QString &reason)
{
    fail(errorText, reason);
    return std::nullopt;
}

} // namespace ErrorText
