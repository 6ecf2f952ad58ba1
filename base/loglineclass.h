#pragma once

#include <QRgb>
#include <QString>

#include <optional>

/// The kind of message that a log line is, recognised by its words.
namespace LogLineClass {

enum class LineClass { Plain, Info, Success, Warning, Error };

/**
 * The class of one log line.
 *
 * Letter case and surrounding blanks do not matter. A line that begins with a warning word stays a
 * warning whatever follows, so that "REJECT ... download failed" is not counted as an error.
 */
LineClass classify(const QString &text);

/// The colour of a class on a dark background; none for a plain line, which has the text colour.
std::optional<QRgb> colour(LineClass lineClass);

/// Whether lines of a class are bold: warnings and errors are.
bool isBold(LineClass lineClass);

} // namespace LogLineClass
