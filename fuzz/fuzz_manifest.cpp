// manifest.csv, by both who read it: the region tool its frames, the session tool all its rows.

#include "fuzz/scratch.h"
#include "output/manifestledger.h"
#include "output/manifestreader.h"

namespace {

int countFrames(const ManifestFrames &frames)
{
    int count = 0;
    for (const QVector<ManifestFrame> &list : frames.bySource)
        count += list.size();
    return count;
}

/// How many of all rows tell of a frame.
int countAcceptedRows(const QString &path, int lines)
{
    ManifestLedger ledger;
    Scratch::require(ledger.open(path), "what has frames has rows");
    int accepted = 0;
    int rows = 0;
    while (const std::optional<ManifestRow> row = ledger.next()) {
        Scratch::require(row->request.sourceId >= 0, "a row has a datasource");
        Scratch::require(ledger.lineNumber() <= lines, "a row has a line");
        accepted += row->status == FrameStatus::Ok ? 1 : 0;
        ++rows;
    }
    Scratch::require(rows + ledger.damagedRows() <= lines, "each row is counted once");
    return accepted;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const QByteArray content = Scratch::bytes(data, size);
    const int lines = content.count('\n') + content.count('\r') + 1;
    const QString path = Scratch::write(QStringLiteral("manifest.csv"), content);
    QString errorText;
    const auto frames = ManifestReader::read(path, &errorText);
    Scratch::require(frames.has_value() == errorText.isEmpty(), "frames or a reason");
    Scratch::require(frames.has_value() == !content.isEmpty(), "only an empty file is refused");
    if (!frames)
        return 0;
    Scratch::require(countFrames(*frames) <= lines, "a frame has a line");
    Scratch::require(countAcceptedRows(path, lines) <= countFrames(*frames),
                     "a frame of the one is a frame of the other");
    return 0;
}
