#include "sessiontool/sessionrecovery.h"

#include "acquisition/sessionlayout.h"
#include "acquisition/sourcetiming.h"
#include "base/runtimeconfig.h"
#include "base/utctext.h"
#include "imaging/framedecoder.h"
#include "output/sessiondescriptor.h"
#include "output/sessionfiles.h"
#include "output/sessionkeys.h"
#include "sessiontool/sessioninterval.h"
#include "sessiontool/sessionledger.h"

#include <QDir>
#include <QSize>

#include <algorithm>

namespace {

/// The catalog path is not in the manifest; the words of the nickname stand for its steps.
DataSource datasourceOf(const SourceLedger &source)
{
    QString path = QLatin1Char('/') + source.nickname.trimmed();
    path.replace(QLatin1Char(' '), QLatin1Char('/'));
    return {source.sourceId, source.nickname, path};
}

/// The width of the first original that is there; 0 when none is.
int widthOf(const SourceLedger &source, const QDir &session)
{
    if (source.archiveName.isEmpty())
        return 0;
    const QDir folder(session.filePath(source.archiveName));
    for (const LedgerFrame &frame : source.frames) {
        const QSize size = FrameDecoder::size(folder.filePath(SessionFiles::frame(frame.number)));
        if (!size.isEmpty())
            return size.width();
    }
    return 0;
}

SessionSourceRecord recordOf(const SourceLedger &source, int stepSeconds, int cadenceSeconds)
{
    const DataSource datasource = datasourceOf(source);
    SessionSourceRecord record;
    record.source = {source.sourceId, source.nickname, {}};
    record.archiveName = source.archiveName;
    record.timingProfile = SourceTiming::toText(SourceTiming::profileOf(datasource));
    record.maxTimeErrorSeconds = source.toleranceSeconds;
    record.acceptedFrames = static_cast<int>(source.acceptedFrames());
    record.timestampedVideoFrames = static_cast<int>(source.annotatedFrames);
    record.duplicateRequests = static_cast<int>(source.count(FrameStatus::Duplicate));
    record.rejectedTimeRequests = static_cast<int>(source.count(FrameStatus::RejectedTime));
    // A run asks the archive for the spacing of every datasource that is not dense. Where requests
    // are wider apart than the cadence, that is the spacing it was told.
    const bool isDense = SourceTiming::isDense(datasource);
    record.preflightMode = isDense ? PreflightMode::DirectDenseSource : PreflightMode::QuickProbe;
    if (isDense)
        record.medianSeconds = record.minSeconds = record.maxSeconds = cadenceSeconds;
    else if (stepSeconds > cadenceSeconds)
        record.medianSeconds = stepSeconds;
    return record;
}

// Each of these sets what the session tells of one setting and says where it was found.

void findInterval(const QDir &session, const SessionLedger &ledger, AcquisitionSettings &settings,
                  QStringList &origins)
{
    const auto named = SessionIntervals::fromFolderName(session.dirName());
    const auto interval = named ? named : SessionIntervals::fromRequests(ledger);
    if (!interval)
        return;
    settings.startUtc = interval->startUtc;
    settings.endUtc = interval->endUtc;
    origins +=
        QStringLiteral("interval   %1 to %2 UTC, from %3")
            .arg(UtcText::toDisplayText(settings.startUtc), UtcText::toDisplayText(settings.endUtc),
                 named ? QStringLiteral("the folder's name")
                       : QStringLiteral("the first and the last request"));
}

void findCadence(const QVector<int> &steps, AcquisitionSettings &settings, QStringList &origins)
{
    int shortest = 0;
    for (const int step : steps)
        shortest = shortest == 0 || (step > 0 && step < shortest) ? step : shortest;
    if (shortest > 0)
        settings.cadenceSeconds = shortest;
    origins += QStringLiteral("cadence    %1 s, %2")
                   .arg(QString::number(settings.cadenceSeconds),
                        shortest > 0 ? QStringLiteral("the shortest step between requests")
                                     : QStringLiteral("Orvik's default"));
}

/// The archive never enlarges: a picture may be narrower than asked for, but not wider.
void findWidth(const QDir &session, const SessionLedger &ledger, AcquisitionSettings &settings,
               QStringList &origins)
{
    int widest = 0;
    for (const SourceLedger &source : ledger.sources)
        widest = std::max(widest, widthOf(source, session));
    if (widest > 0)
        settings.imageWidth = widest;
    origins += QStringLiteral("PNG width  %1, %2")
                   .arg(QString::number(settings.imageWidth),
                        widest > 0 ? QStringLiteral("that of the widest original")
                                   : QStringLiteral("Orvik's default"));
}

/// Datasources with a profile of their own have tolerances of their own.
void findTolerance(const SessionLedger &ledger, AcquisitionSettings &settings, QStringList &origins)
{
    const auto found = std::find_if(
        ledger.sources.cbegin(), ledger.sources.cend(), [](const SourceLedger &source) {
            return SourceTiming::profileOf(datasourceOf(source)) == SourceTimingProfile::Default;
        });
    const bool isFound = found != ledger.sources.cend();
    if (isFound)
        settings.maxTimeErrorSeconds = found->toleranceSeconds;
    origins += QStringLiteral("tolerance  %1 s, %2")
                   .arg(QString::number(settings.maxTimeErrorSeconds),
                        isFound ? QStringLiteral("from the rows of %1").arg(found->nickname)
                                : QStringLiteral("Orvik's default"));
}

/// Datasources without a frame have the folder that a run gives them.
QVector<SessionSourceRecord> recordsOf(const QDir &session, const SessionLedger &ledger,
                                       const QVector<int> &steps,
                                       const AcquisitionSettings &settings)
{
    QVector<DataSource> dataSources;
    for (const SourceLedger &source : ledger.sources)
        dataSources.append({source.sourceId, source.nickname, {}});
    const QHash<int, SourceFolder> folders =
        SessionLayout::sourceFolders(session.absolutePath(), dataSources, settings.startUtc);
    QVector<SessionSourceRecord> records;
    for (int i = 0; i < ledger.sources.size(); ++i) {
        records.append(recordOf(ledger.sources.at(i), steps.at(i), settings.cadenceSeconds));
        if (records.last().archiveName.isEmpty())
            records.last().archiveName = folders.value(ledger.sources.at(i).sourceId).name;
    }
    return records;
}

} // namespace

std::optional<RecoveredDescriptor> SessionRecovery::describe(const QDir &session,
                                                             const SessionLedger &ledger)
{
    if (ledger.sources.isEmpty())
        return std::nullopt;
    QVector<int> steps;
    for (const SourceLedger &source : ledger.sources)
        steps.append(source.stepSeconds());
    RecoveredDescriptor recovered;
    SessionRecord record;
    findInterval(session, ledger, record.settings, recovered.origins);
    findCadence(steps, record.settings, recovered.origins);
    findTolerance(ledger, record.settings, recovered.origins);
    findWidth(session, ledger, record.settings, recovered.origins);
    recovered.origins +=
        QStringLiteral("film       %1 pictures per second, CRF %2, and overlays: Orvik's defaults")
            .arg(QString::number(record.settings.videoFps),
                 QString::number(record.settings.videoCrf));
    record.apiBase = RuntimeConfig::apiBase();
    record.preflightParallelRequests = RuntimeConfig::preflightParallelRequests();
    record.preflightProbeSeconds = RuntimeConfig::preflightProbeSeconds();
    record.canceled = true;
    record.completedUtc = QDateTime::currentDateTimeUtc();
    record.sources = recordsOf(session, ledger, steps, record.settings);
    recovered.json = SessionDescriptor::toJson(record);
    recovered.json.insert(SessionKeys::recovered, true);
    return recovered;
}
