#include "bench/soak/sessionevidence.h"

#include "base/jsonfile.h"
#include "output/csvfields.h"
#include "output/filmfile.h"
#include "output/manifestcolumns.h"
#include "output/sessionfiles.h"
#include "output/sessionkeys.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>

namespace {

void count(StatusTally &tally, const QStringRef &status)
{
    ++tally.rows;
    tally.accepted += status == QLatin1String("OK") ? 1 : 0;
    tally.duplicates += status == QLatin1String("DUPLICATE") ? 1 : 0;
    tally.rejected += status == QLatin1String("REJECTED_TIME") ? 1 : 0;
    tally.lookupErrors += status == QLatin1String("LOOKUP_ERROR") ? 1 : 0;
    tally.downloadErrors += status == QLatin1String("DOWNLOAD_ERROR") ? 1 : 0;
}

/// Reads manifest.csv; the rows of each datasource by its id.
QHash<int, StatusTally> readManifest(const QString &path, SessionEvidence &evidence)
{
    QHash<int, StatusTally> bySource;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.readLine().isEmpty())
        evidence.faults << QStringLiteral("there is no manifest");
    CsvFields fields;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        fields.split(QString::fromUtf8(line).trimmed());
        const int index = fields.at(ManifestColumns::RequestIndex).toInt();
        if (!line.endsWith('\n') || fields.count() != ManifestColumns::Count ||
            index != evidence.manifest.rows)
            evidence.faults << QStringLiteral("row %1 is damaged").arg(evidence.manifest.rows);
        const QStringRef status = fields.at(ManifestColumns::Status);
        count(evidence.manifest, status);
        count(bySource[fields.at(ManifestColumns::SourceId).toInt()], status);
        evidence.lastRequestedUtc = fields.at(ManifestColumns::RequestedUtc).toString();
    }
    return bySource;
}

int picturesIn(const QString &folder)
{
    return QDir(folder).entryList({SessionFiles::frameFilter()}, QDir::Files).size();
}

void checkSource(const QJsonObject &record, const QDir &session, const StatusTally &tally,
                 SessionEvidence &evidence)
{
    const QString name = record.value(SessionKeys::archiveName).toString();
    const QDir folder(session.filePath(name));
    const int originals = picturesIn(folder.path());
    const int copies = picturesIn(folder.filePath(SessionFiles::videoFramesFolder()));
    evidence.pictures += originals + copies;
    const auto film = FilmFile::read(folder.filePath(SessionFiles::film(name)));
    const int filmed = evidence.isCanceled || tally.accepted == 0 ? 0 : tally.accepted;
    const int others = folder.entryList(QDir::Files | QDir::Hidden).size() - originals;

    const auto expect = [&](const char *what, qint64 found, qint64 wanted) {
        if (found != wanted)
            evidence.faults << QStringLiteral("%1: %2 %3, but the manifest makes %4")
                                   .arg(name, QString::number(found), QLatin1String(what),
                                        QString::number(wanted));
    };
    const auto told = [&record](const char *key) {
        return record.value(QLatin1String(key)).toInt();
    };
    expect("accepted in session.json", told("acceptedFrames"), tally.accepted);
    expect("copies in session.json", told("timestampedVideoFrames"), tally.accepted);
    expect("duplicates in session.json", told("duplicateRequests"), tally.duplicates);
    expect("rejected in session.json", told("rejectedTimeRequests"), tally.rejected);
    expect("originals", originals, tally.accepted);
    expect("annotated copies", copies, tally.accepted);
    expect("pictures in the film", film ? film->pictures : 0, filmed);
    expect("other files", others, filmed > 0 ? 1 : 0);
}

} // namespace

SessionEvidence SessionEvidence::of(const QString &sessionDirectory)
{
    SessionEvidence evidence;
    const QDir session(sessionDirectory);
    const auto bySource = readManifest(session.filePath(SessionFiles::manifest()), evidence);
    const QJsonObject descriptor =
        JsonFile::load(session.filePath(SessionFiles::descriptor())).value_or(QJsonObject());
    evidence.isCanceled = descriptor.value(QLatin1String("canceled")).toBool();
    const QJsonArray records = descriptor.value(SessionKeys::sources).toArray();
    for (const QJsonValue &value : records) {
        const QJsonObject record = value.toObject();
        checkSource(record, session, bySource.value(record.value(SessionKeys::sourceId).toInt()),
                    evidence);
    }
    if (records.size() < bySource.size())
        evidence.faults << QStringLiteral("session.json lacks datasources");
    return evidence;
}
