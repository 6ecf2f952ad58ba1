#pragma once

#include <QString>

#include <optional>

class QByteArray;
class QJsonObject;

/// JSON objects on disk.
namespace JsonFile {

/// Which step of a save failed; the caller writes the message.
enum class SaveResult { Saved, CannotOpen, CannotCommit };

/**
 * The object that @p json holds.
 *
 * @return nothing when it does not parse, is not an object, or has more than ten million values or
 *         a hundred thousand objects or arrays, which would need far more memory than the text;
 *         @p errorText, which may be null, then says why
 */
std::optional<QJsonObject> parse(const QByteArray &json, QString *errorText = nullptr);

/// Writes @p object, indented; @p path is replaced only once everything is written.
SaveResult save(const QString &path, const QJsonObject &object);

/**
 * Reads the object in @p path.
 *
 * @return nothing when the file cannot be opened, is not a regular file, is larger than 64 MB, or
 *         is refused by parse(); then @p errorText, which may be null, says why
 */
std::optional<QJsonObject> load(const QString &path, QString *errorText = nullptr);

} // namespace JsonFile
