#include "base/jsonfile.h"

#include "base/errortext.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

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
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return ErrorText::nothing(errorText, file.errorString());
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (!document.isObject())
        return ErrorText::nothing(errorText, error.errorString());
    return document.object();
}
