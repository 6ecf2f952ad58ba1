#include "tests/faults/sessioncheck.h"

#include "base/jsonfile.h"
#include "output/csvfields.h"
#include "output/filmfile.h"
#include "output/manifestcolumns.h"

#include <QDir>
#include <QDirIterator>
#include <QImage>
#include <QJsonArray>
#include <QJsonObject>

namespace {

const QString ok = QStringLiteral("OK");

/// Checks one row; gives the pictures it names.
QStringList readRow(const QByteArray &line, SessionCheck &check)
{
    CsvFields fields;
    fields.split(QString::fromUtf8(line).trimmed());
    const QString index = QString::number(check.statuses.size());
    check.statuses += fields.at(ManifestColumns::Status).toString();
    const QString file = fields.at(ManifestColumns::File).toString();
    if (!line.endsWith('\n') || fields.count() != ManifestColumns::Count ||
        fields.at(ManifestColumns::RequestIndex) != index ||
        (check.statuses.last() == ok) == file.isEmpty())
        check.faults +=
            QStringLiteral("row ") + index + QStringLiteral(": ") + QString::fromUtf8(line);
    QStringList pictures{file, fields.at(ManifestColumns::VideoFrame).toString()};
    pictures.removeAll(QString());
    return pictures;
}

void checkDescriptor(const QString &path, SessionCheck &check)
{
    check.hasDescriptor = QFile::exists(path);
    const QJsonObject session = JsonFile::load(path).value_or(QJsonObject());
    const QJsonArray sources = session.value(QLatin1String("sources")).toArray();
    int accepted = 0;
    int copied = 0;
    for (const auto &source : sources) {
        accepted += source.toObject().value(QLatin1String("acceptedFrames")).toInt();
        copied += source.toObject().value(QLatin1String("timestampedVideoFrames")).toInt();
    }
    const int rows = check.statuses.count(ok);
    if (check.hasDescriptor &&
        (session.isEmpty() || accepted != rows || copied != check.pictures - rows))
        check.faults += QStringLiteral("session.json does not agree with the manifest");
}

} // namespace

SessionCheck SessionCheck::of(const QString &sessionDirectory)
{
    SessionCheck check;
    const QDir session(sessionDirectory);
    QStringList known{QStringLiteral("manifest.csv"), QStringLiteral("session.json")};
    QFile manifest(session.filePath(known.first()));
    if (!manifest.open(QIODevice::ReadOnly) || manifest.readLine().isEmpty())
        check.faults += QStringLiteral("no manifest in ") + sessionDirectory;
    while (!manifest.atEnd()) {
        const QStringList pictures = readRow(manifest.readLine(), check);
        for (const QString &picture : pictures) {
            known += picture;
            ++check.pictures;
            if (QImage(session.filePath(picture)).isNull())
                check.faults += QStringLiteral("does not decode: ") + picture;
        }
    }
    checkDescriptor(session.filePath(known.at(1)), check);
    QDirIterator files(session.path(), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = session.relativeFilePath(files.next());
        if (file.endsWith(QLatin1String(".mp4")) ? FilmFile::isCutOff(session.filePath(file))
                                                 : !known.contains(file))
            check.strays += file;
    }
    return check;
}
