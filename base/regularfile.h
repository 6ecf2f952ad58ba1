#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class QFile;

/**
 * Reads files that may have been put there by others, without trusting them.
 *
 * Opening a named pipe could block for ever, and reading a device might never end.
 */
namespace RegularFile {

/// Opens @p file for reading if it is a regular file; links are followed.
bool open(QFile &file);

/**
 * All of @p path, provided that it holds no more than @p maxBytes.
 *
 * @return nothing otherwise, and when it cannot be opened; @p errorText, which may be null, then
 *         says why
 */
std::optional<QByteArray> read(const QString &path, qint64 maxBytes, QString *errorText = nullptr);

} // namespace RegularFile
