#include "base/jsonfile.h"

#include "base/errortext.h"
#include "base/regularfile.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace {

/// Far beyond what the program writes, but not what would fill the memory.
constexpr qint64 maxBytes = 64 << 20;
constexpr int maxValues = 10'000'000;  // of sixteen bytes
constexpr int maxContainers = 100'000; // of some hundred bytes, and often each an item in a window

/// Counts signs inside texts, too, and not at all when @p json is too short to have too many.
bool isTooMuch(const QByteArray &json, char sign, int limit)
{
    return json.size() > limit && json.count(sign) > limit;
}

} // namespace

std::optional<QJsonObject> JsonFile::parse(const QByteArray &json, QString *errorText)
{
    if (isTooMuch(json, ',', maxValues) || isTooMuch(json, '{', maxContainers) ||
        isTooMuch(json, '[', maxContainers))
        return ErrorText::nothing(errorText, QStringLiteral("too many values"));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (!document.isObject())
        return ErrorText::nothing(errorText, error.errorString());
    return document.object();
}

JsonFile::SaveResult JsonFile::save(const QString &path, const QJsonObject &object)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return SaveResult::CannotOpen;
    const QByteArray json = QJsonDocument(object).toJson(QJsonDocument::Indented);
    // A disk that fills up takes a part of it, which QSaveFile does not see as an error; nor does
    // it look at what becomes of the rest in its buffer, which commit() would write too late.
    const bool written = file.write(json) == json.size() && file.flush();
    return written && file.commit() ? SaveResult::Saved : SaveResult::CannotCommit;
}

std::optional<QJsonObject> JsonFile::load(const QString &path, QString *errorText)
{
    const std::optional<QByteArray> json = RegularFile::read(path, maxBytes, errorText);
    return json ? parse(*json, errorText) : std::nullopt;
}
