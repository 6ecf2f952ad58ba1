#include "sessiontool/sessionledger.h"

#include "acquisition/cadenceanalysis.h"
#include "output/manifestledger.h"
#include "output/sessionfiles.h"
#include "sessiontool/storeddescriptor.h"

#include <QDir>

#include <algorithm>
#include <numeric>

namespace {

/// The folder in the path of a frame; empty for one that no session writes.
QString folderOf(const QString &file)
{
    const int slash = file.indexOf(QLatin1Char('/'));
    const QString folder = file.left(slash);
    const bool isUsual = slash > 0 && StoredDescriptors::isFolderName(folder) &&
                         SessionFiles::frameNumber(file.mid(slash + 1)) >= 0;
    return isUsual ? folder : QString();
}

void enter(const ManifestRow &row, SourceLedger &source)
{
    ++source.outcomes[static_cast<std::size_t>(row.status)];
    source.toleranceSeconds = row.toleranceSeconds;
    if (row.request.requestedUtc.isValid())
        source.requestedSeconds.append(row.request.requestedUtc.toSecsSinceEpoch());
    if (row.status != FrameStatus::Ok)
        return;
    if (source.archiveName.isEmpty())
        source.archiveName = folderOf(row.file);
    source.annotatedFrames += row.videoFrame.isEmpty() ? 0 : 1;
    const QString name = row.file.mid(row.file.lastIndexOf(QLatin1Char('/')) + 1);
    source.frames.append(
        {SessionFiles::frameNumber(name), row.request.requestedUtc, row.actualUtc});
}

/// Where the datasource of @p request stands, which is added when it is new.
int positionOf(const DataSource &request, SessionLedger &ledger)
{
    const auto known = ledger.positions.constFind(request.sourceId);
    if (known != ledger.positions.cend())
        return *known;
    const int position = ledger.sources.size();
    ledger.positions.insert(request.sourceId, position);
    SourceLedger source;
    source.sourceId = request.sourceId;
    source.nickname = request.nickname;
    ledger.sources.append(source);
    return position;
}

} // namespace

qint64 SourceLedger::requests() const
{
    return std::accumulate(outcomes.cbegin(), outcomes.cend(), static_cast<qint64>(0));
}

QVector<int> SourceLedger::frameNumbers() const
{
    QVector<int> numbers;
    numbers.reserve(frames.size());
    for (const LedgerFrame &frame : frames)
        numbers.append(frame.number);
    return numbers;
}

int SourceLedger::stepSeconds() const
{
    QVector<qint64> seconds = requestedSeconds;
    std::sort(seconds.begin(), seconds.end());
    seconds.erase(std::unique(seconds.begin(), seconds.end()), seconds.end());
    return CadenceAnalysis::analyze(seconds).medianSeconds;
}

qint64 SessionLedger::requests() const
{
    return std::accumulate(
        sources.cbegin(), sources.cend(), static_cast<qint64>(0),
        [](qint64 sum, const SourceLedger &source) { return sum + source.requests(); });
}

qint64 SessionLedger::acceptedFrames() const
{
    return std::accumulate(
        sources.cbegin(), sources.cend(), static_cast<qint64>(0),
        [](qint64 sum, const SourceLedger &source) { return sum + source.acceptedFrames(); });
}

SourceLedger SessionLedger::source(int sourceId) const
{
    const auto position = positions.constFind(sourceId);
    return position == positions.cend() ? SourceLedger() : sources.at(*position);
}

std::optional<SessionLedger> SessionLedgers::read(const QDir &session, QString *errorText)
{
    ManifestLedger rows;
    if (!rows.open(session.filePath(SessionFiles::manifest()), errorText))
        return std::nullopt;
    SessionLedger ledger;
    while (const std::optional<ManifestRow> row = rows.next())
        enter(*row, ledger.sources[positionOf(row->request, ledger)]);
    ledger.remarks = rows.remarks();
    return ledger;
}
