#pragma once

#include <QRgb>
#include <QString>

#include <optional>

/// What kind of message a log line is, told from its words.
namespace LogLineClass {

enum class LineClass { Plain, Info, Success, Warning, Error };

/**
 * The class of one log line.
 *
 * Letter case and surrounding blanks do not matter. A line that begins with a warning word stays a
 * warning whatever follows, so that "REJECT ... download failed" is not counted as an error.
 */
LineClass classify(const QString &text);

/// The colour of a class on a dark ground; none for a plain line, which has that of any text.
std::optional<QRgb> colour(LineClass lineClass);

/// Whether lines of a class are set in bold type: those that want attention.
bool isBold(LineClass lineClass);

} // namespace LogLineClass
