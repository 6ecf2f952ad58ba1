#pragma once

#include <QString>

#include <optional>

class QByteArray;
class QJsonObject;

/// JSON objects on disk.
namespace JsonFile {

/// Which step of a save failed; callers word it for their own file.
enum class SaveResult { Saved, CannotOpen, CannotCommit };

/**
 * The object that @p json holds.
 *
 * @return nothing when it does not parse, holds no object, or has more than ten million values or a
 *         hundred thousand objects or arrays, which would take more memory than the text; then
 *         @p errorText, which may be null, is the parser's reason or says so
 */
std::optional<QJsonObject> parse(const QByteArray &json, QString *errorText = nullptr);

/// Writes @p object indented through a save file that replaces @p path only when all is written.
SaveResult save(const QString &path, const QJsonObject &object);

/**
 * Reads the object in @p path.
 *
 * @return nothing when the file cannot be opened, is no regular file, has more than 64 MB, or is
 *         refused by parse(); then @p errorText, which may be null, says why
 */
std::optional<QJsonObject> load(const QString &path, QString *errorText = nullptr);

} // namespace JsonFile
