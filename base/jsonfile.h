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
 * @return nothing when the file cannot be opened, is no regular file, has more than 64 MB, does
 *         not parse or holds no object; then @p errorText, which may be null, says why
 */
std::optional<QJsonObject> load(const QString &path, QString *errorText = nullptr);

} // namespace JsonFile
