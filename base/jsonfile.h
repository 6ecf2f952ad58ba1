#pragma once

#include <QString>

#include <optional>

class QJsonObject;

/// JSON objects on disk.
namespace JsonFile {

/// Which step of a save failed; callers word it for their own file.
enum class SaveResult { Saved, CannotOpen, CannotCommit };

/// Writes @p object indented through a save file that replaces @p path only when all is written.
SaveResult save(const QString &path, const QJsonObject &object);

/**
 * Reads the object in @p path.
 *
 * @return nothing when the file cannot be opened, does not parse or holds no object; then
 *         @p errorText, which may be null, is the system's or the parser's reason
 */
std::optional<QJsonObject> load(const QString &path, QString *errorText = nullptr);

} // namespace JsonFile
