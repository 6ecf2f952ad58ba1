#include "output/manifestreader.h"

#include "base/utctext.h"
#include "output/manifestrow.h"
#include "output/manifesttable.h"

#include <array>
#include <cmath>

namespace {

/// 0 for anything but a finite number, which JSON could not hold either.
double toNumber(const QStringRef &text)
{
    const double number = text.toDouble(); // 0 for what is not a number
    return std::isfinite(number) ? number : 0.0;
}

bool isKept(const ManifestColumns::Geometry &column, double number)
{
    return number > 0.0 || !column.positive;
}

/**
 * The frames of one datasource while they are read.
 *
 * The geometry of a datasource hardly changes from row to row. So each frame starts from the
 * metadata of the previous one, and only what differs is parsed: a million frames share memory.
 */
class FrameList final
{
public:
    void append(const ManifestTable &table);
    const QVector<ManifestFrame> &frames() const { return m_frames; }

private:
    static constexpr std::size_t geometryCount = ManifestColumns::geometry.size();

    void updateMetadata(const ManifestTable &table);
    QJsonObject newMetadata() const;

    QVector<ManifestFrame> m_frames;
    std::array<QString, geometryCount> m_texts;
    std::array<double, geometryCount> m_numbers{}; // values of m_texts
    QJsonObject m_metadata = newMetadata();        // made from m_numbers
};

void FrameList::append(const ManifestTable &table)
{
    updateMetadata(table);
    m_frames.append({table.field(ManifestColumns::File).toString(),
                     UtcText::fromText(table.field(ManifestColumns::ActualUtc).toString()),
                     m_metadata});
}

/// Replaces values in place. When keys change, rebuilds the object: QJsonObject never frees removed
/// keys.
void FrameList::updateMetadata(const ManifestTable &table)
{
    bool sameKeys = true;
    for (std::size_t i = 0; i < geometryCount; ++i) {
        const ManifestColumns::Geometry &column = ManifestColumns::geometry[i];
        const QStringRef text = table.field(column.column);
        if (text == m_texts[i])
            continue;
        const double number = toNumber(text);
        sameKeys = sameKeys && isKept(column, number) == isKept(column, m_numbers[i]);
        if (sameKeys && isKept(column, number))
            m_metadata.insert(QLatin1String(column.metadataKey), number);
        m_texts[i] = text.toString();
        m_numbers[i] = number;
    }
    if (!sameKeys)
        m_metadata = newMetadata();
}

QJsonObject FrameList::newMetadata() const
{
    QJsonObject metadata;
    for (std::size_t i = 0; i < geometryCount; ++i) {
        const ManifestColumns::Geometry &column = ManifestColumns::geometry[i];
        if (isKept(column, m_numbers[i]))
            metadata.insert(QLatin1String(column.metadataKey), m_numbers[i]);
    }
    return metadata;
}

} // namespace

std::optional<ManifestFrames> ManifestReader::read(const QString &manifestPath, QString *errorText)
{
    ManifestTable table;
    if (!table.open(manifestPath, errorText))
        return std::nullopt;
    const QString accepted = ManifestRows::toText(FrameStatus::Ok);
    QHash<int, FrameList> lists;
    while (table.next()) {
        if (table.field(ManifestColumns::Status) == accepted)
            lists[table.field(ManifestColumns::SourceId).toInt()].append(table);
    }

    ManifestFrames frames;
    frames.remark = table.remark();
    for (auto list = lists.cbegin(); list != lists.cend(); ++list)
        frames.bySource.insert(list.key(), list->frames());
    return frames;
}
