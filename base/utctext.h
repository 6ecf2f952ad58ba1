#pragma once

#include <QDateTime>
#include <QString>

/// Times as text: stored and sent, drawn, shown, and used in folder names. All are UTC.
namespace UtcText {

/// "2024-05-01T12:00:07Z", the form that is stored and sent; empty for an invalid time.
QString toText(const QDateTime &time);

/**
 * Reads a stored time: ISO 8601 with milliseconds, plain ISO 8601, then the form of toText().
 *
 * Surrounding white space is dropped. The result is UTC, or invalid when no form fits. A text
 * without a zone is taken as local time and converted, as ISO 8601 has it.
 */
QDateTime fromText(const QString &text);

/// @p time without its fraction of a second, which the user interface does not show.
QDateTime wholeSecond(const QDateTime &time);
/// "2024-05-01 12:00:07 UTC", the form that is drawn on frames.
QString toOverlayText(const QDateTime &time);

/// "2024-05-01 12:00:07", the form that the user interface shows.
QString toDisplayText(const QDateTime &time);

/// "20240501_120007", the form that folder names carry.
QString toFolderText(const QDateTime &time);

/// Seconds with an explicit sign: "+0", "+12", "-7".
QString signedDelta(qint64 seconds);

} // namespace UtcText
