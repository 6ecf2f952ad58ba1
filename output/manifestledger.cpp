#include "output/manifestledger.h"

#include "base/utctext.h"

namespace {

using Column = ManifestColumns::Column;

ManifestRow toRow(const ManifestTable &table, int sourceId, FrameStatus status)
{
    const auto text = [&table](Column column) { return table.field(column).toString(); };
    ManifestRow row;
    row.request.sourceId = sourceId;
    row.request.nickname = text(Column::Source);
    row.request.requestIndex = table.field(Column::RequestIndex).toInt();
    row.request.requestedUtc = UtcText::fromText(text(Column::RequestedUtc));
    row.actualUtc = UtcText::fromText(text(Column::ActualUtc));
    row.imageId = table.field(Column::ImageId).toLongLong();
    row.deltaSeconds = table.field(Column::DeltaSeconds).toLongLong();
    row.toleranceSeconds = table.field(Column::ToleranceSeconds).toInt();
    row.file = text(Column::File);
    row.videoFrame = text(Column::VideoFrame);
    row.status = status;
    return row;
}

} // namespace

bool ManifestLedger::open(const QString &manifestPath, QString *errorText)
{
    return m_table.open(manifestPath, errorText);
}

std::optional<ManifestRow> ManifestLedger::next()
{
    while (m_table.next()) {
        m_isCutOff = m_table.isCutOff();
        bool isNumber = false;
        const int sourceId = m_table.field(Column::SourceId).toInt(&isNumber);
        const std::optional<FrameStatus> status =
            ManifestRows::frameStatus(m_table.field(Column::Status));
        if (isNumber && sourceId >= 0 && status)
            return toRow(m_table, sourceId, *status);
        if (!m_isCutOff)
            countDamagedRow();
    }
    return std::nullopt;
}

QStringList ManifestLedger::remarks() const
{
    QStringList remarks;
    if (m_damagedRows == 1)
        remarks += QStringLiteral("line %1 of manifest.csv is not a valid row. It is skipped.")
                       .arg(m_firstDamagedLine);
    if (m_damagedRows > 1)
        remarks += QStringLiteral("%1 lines of manifest.csv are not valid rows, the first of them "
                                  "line %2. They are skipped.")
                       .arg(m_damagedRows)
                       .arg(m_firstDamagedLine);
    if (m_isCutOff)
        remarks += QStringLiteral("the last row of manifest.csv, line %1, is cut off.")
                       .arg(m_table.lineNumber());
    if (!m_table.remark().isEmpty())
        remarks += m_table.remark();
    return remarks;
}

void ManifestLedger::countDamagedRow()
{
    if (++m_damagedRows == 1)
        m_firstDamagedLine = m_table.lineNumber();
}
