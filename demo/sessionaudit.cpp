#include "demo/sessionaudit.h"

#include "base/jsonfile.h"
#include "output/csvfields.h"

#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonObject>
#include <QTextStream>

#include <cmath>

namespace {

void count(RequestCounts &counts, const QStringRef &status)
{
    ++counts.requested;
    if (status == QLatin1String("OK"))
        ++counts.accepted;
    else if (status == QLatin1String("DUPLICATE"))
        ++counts.duplicates;
    else if (status == QLatin1String("REJECTED_TIME"))
        ++counts.rejected;
    else
        ++counts.failed;
}

QString toText(const RequestCounts &counts)
{
    return QStringLiteral("%1 requested, %2 accepted, %3 duplicates, %4 rejected, %5 failed")
        .arg(QString::number(counts.requested), QString::number(counts.accepted),
             QString::number(counts.duplicates), QString::number(counts.rejected),
             QString::number(counts.failed));
}

void checkCounts(SourceAudit &audit, const QJsonObject &record, const RequestCounts &expected)
{
    if (audit.counts != expected)
        audit.faults << QStringLiteral("the archive's pictures make %1; the manifest has %2")
                            .arg(toText(expected), toText(audit.counts));
    const bool agrees =
        record[QStringLiteral("acceptedFrames")].toInt() == audit.counts.accepted &&
        record[QStringLiteral("timestampedVideoFrames")].toInt() == audit.counts.accepted &&
        record[QStringLiteral("duplicateRequests")].toInt() == audit.counts.duplicates &&
        record[QStringLiteral("rejectedTimeRequests")].toInt() == audit.counts.rejected;
    if (!agrees)
        audit.faults << QStringLiteral("session.json and manifest.csv disagree about the counts");
}

void checkPictures(SourceAudit &audit, const QDir &folder)
{
    const QStringList pattern{QStringLiteral("frame_*.png")};
    for (const QString &name : {QStringLiteral("."), QStringLiteral("video_frames")}) {
        const QDir pictures(folder.filePath(name));
        const QStringList files = pictures.entryList(pattern, QDir::Files);
        if (files.size() != audit.counts.accepted)
            audit.faults << QStringLiteral("%1 pictures in %2 instead of %3")
                                .arg(QString::number(files.size()), pictures.path(),
                                     QString::number(audit.counts.accepted));
        for (const QString &file : files) {
            if (QImageReader(pictures.filePath(file)).read().isNull())
                audit.faults << QStringLiteral("%1 does not decode").arg(pictures.filePath(file));
        }
    }
}

void checkFilm(SourceAudit &audit, int framesPerSecond)
{
    QString reason;
    audit.film = FilmProbe::read(audit.filmFile, &reason);
    if (!audit.film) {
        audit.faults << QStringLiteral("no film: %1").arg(reason);
        return;
    }
    if (audit.film->frames != audit.counts.accepted)
        audit.faults << QStringLiteral("the film has %1 frames instead of %2")
                            .arg(QString::number(audit.film->frames),
                                 QString::number(audit.counts.accepted));
    const double wantedSeconds = static_cast<double>(audit.counts.accepted) / framesPerSecond;
    if (std::abs(audit.film->seconds - wantedSeconds) > 0.5 / framesPerSecond)
        audit.faults << QStringLiteral("the film lasts %1 s instead of %2 s")
                            .arg(QString::number(audit.film->seconds),
                                 QString::number(wantedSeconds));
}

} // namespace

QHash<int, RequestCounts> SessionAudit::ledgerCounts(const QString &manifestFile)
{
    QHash<int, RequestCounts> counts;
    QFile file(manifestFile);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return counts;
    QTextStream lines(&file);
    CsvFields fields;
    QString line;
    lines.readLineInto(&line);
    const QStringList columns = line.split(QLatin1Char(','));
    const int sourceId = columns.indexOf(QStringLiteral("SourceId"));
    const int status = columns.indexOf(QStringLiteral("Status"));
    while (lines.readLineInto(&line)) {
        fields.split(line);
        count(counts[fields.at(sourceId).toInt()], fields.at(status));
    }
    return counts;
}

QVector<SourceAudit> SessionAudit::audit(const QString &sessionDirectory,
                                         const AcquisitionSettings &settings,
                                         const QVector<RequestCounts> &expected)
{
    const QDir session(sessionDirectory);
    const auto ledger = ledgerCounts(session.filePath(QStringLiteral("manifest.csv")));
    const auto descriptor = JsonFile::load(session.filePath(QStringLiteral("session.json")));
    const QJsonArray records =
        descriptor.value_or(QJsonObject())[QStringLiteral("sources")].toArray();
    QVector<SourceAudit> audits;
    for (int i = 0; i < settings.sources.size(); ++i) {
        const QJsonObject record = records[i].toObject();
        const QDir folder(session.filePath(record[QStringLiteral("archiveName")].toString()));
        SourceAudit audit;
        audit.source = settings.sources.at(i);
        audit.counts = ledger.value(audit.source.sourceId);
        audit.filmFile = folder.filePath(record[QStringLiteral("videoFile")].toString());
        checkCounts(audit, record, expected.at(i));
        checkPictures(audit, folder);
        checkFilm(audit, settings.videoFps);
        audits << audit;
    }
    return audits;
}
