#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class QFile;

/**
 * Files that others may have put in place, read without trusting them.
 *
 * A named pipe or a device would be waited for without end, or never end itself.
 */
namespace RegularFile {

/// Opens @p file for reading unless it is anything but a regular file; links are followed.
bool open(QFile &file);

/**
 * All of @p path, provided that it holds no more than @p maxBytes.
 *
 * @return nothing otherwise, and when it cannot be opened; @p errorText, which may be null, then
 *         says why
 */
std::optional<QByteArray> read(const QString &path, qint64 maxBytes, QString *errorText = nullptr);

} // namespace RegularFile
