#include "tests/acquisition/sessioncheck.h"

#include "base/jsonfile.h"
#include "output/csvfields.h"
#include "output/filmfile.h"
#include "output/manifestcolumns.h"
#include "tests/support/literals.h"

#include <QDir>
#include <QDirIterator>
#include <QImage>
#include <QJsonArray>

namespace {

/// Checks one row; gives the pictures it names.
QStringList readRow(const QByteArray &line, SessionCheck &check)
{
    CsvFields fields;
    fields.split(QString::fromUtf8(line).trimmed());
    const QString status = fields.at(ManifestColumns::Status).toString();
    const QString file = fields.at(ManifestColumns::File).toString();
    if (!line.endsWith('\n') || fields.count() != ManifestColumns::Count ||
        fields.at(ManifestColumns::RequestIndex) != QString::number(check.rows) ||
        fields.at(ManifestColumns::ToleranceSeconds) == QLatin1String("0") ||
        (status == QLatin1String("OK")) == file.isEmpty())
        check.faults += "row: "_s + QString::fromUtf8(line);
    check.statuses += (check.rows++ > 0 ? " "_s : QString()) + status;
    QStringList pictures{file, fields.at(ManifestColumns::VideoFrame).toString()};
    pictures.removeAll(QString());
    return pictures;
}

void checkDescriptor(const QDir &session, SessionCheck &check)
{
    check.descriptor = JsonFile::load(session.filePath("session.json"_s)).value_or(QJsonObject());
    int accepted = 0;
    int pictures = 0;
    bool hasFolders = true;
    const QJsonArray sources = check.descriptor.value(QLatin1String("sources")).toArray();
    for (const auto &source : sources) {
        accepted += source[QLatin1String("acceptedFrames")].toInt();
        pictures += source[QLatin1String("timestampedVideoFrames")].toInt();
        hasFolders &= session.exists(source[QLatin1String("archiveName")].toString());
    }
    if (!check.descriptor.isEmpty() &&
        (!hasFolders || accepted != check.statuses.split(QLatin1Char(' ')).count("OK"_s) ||
         pictures + accepted != check.pictures))
        check.faults += "session.json does not agree with the manifest"_s;
}

} // namespace

SessionCheck SessionCheck::of(const QString &sessionDirectory)
{
    SessionCheck check;
    const QDir session(sessionDirectory);
    QStringList known{"manifest.csv"_s, "session.json"_s};
    QFile manifest(session.filePath(known.first()));
    if (!manifest.open(QIODevice::ReadOnly) || manifest.readLine().isEmpty())
        check.faults += "no manifest in "_s + sessionDirectory;
    while (!manifest.atEnd()) {
        const QStringList pictures = readRow(manifest.readLine(), check);
        for (const QString &picture : pictures) {
            known += picture;
            ++check.pictures;
            if (QImage(session.filePath(picture)).isNull())
                check.faults += "does not decode: "_s + picture;
        }
    }
    checkDescriptor(session, check);
    QDirIterator files(session.path(), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = session.relativeFilePath(files.next());
        if (file.endsWith(QLatin1String(".mp4")) ? FilmFile::isCutOff(session.filePath(file))
                                                 : !known.contains(file))
            check.strays += file;
    }
    return check;
}
