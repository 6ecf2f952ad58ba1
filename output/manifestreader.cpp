#include "output/manifestreader.h"

#include "base/errortext.h"
#include "base/regularfile.h"
#include "base/utctext.h"
#include "output/csvfields.h"
#include "output/manifestcolumns.h"
#include "output/manifestrow.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

#include <array>
#include <cmath>

namespace {

/// The current line of a manifest, by column.
class Table
{
public:
    void setHeader(QStringView line);
    void setRow(QStringView line) { m_fields.split(line); }
    QStringRef field(ManifestColumns::Column column) const
    {
        return m_fields.at(m_positions[column]);
    }

private:
    CsvFields m_fields;
    std::array<int, ManifestColumns::Count> m_positions{}; // -1: the file has no such column
};

void Table::setHeader(QStringView line)
{
    m_positions.fill(-1);
    m_fields.split(line);
    for (int position = 0; position < m_fields.count(); ++position) {
        const QStringRef name = m_fields.at(position).trimmed();
        for (std::size_t column = 0; column < m_positions.size(); ++column) {
            if (name == QLatin1String(ManifestColumns::names[column]))
                m_positions[column] = position; // of two equal names the last one counts
        }
    }
}

/// 0 for anything but a finite number, which JSON could not hold either.
double toNumber(const QStringRef &text)
{
    const double number = text.toDouble(); // 0 for what is no number
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
class FrameList
{
public:
    void append(const Table &table);
    const QVector<ManifestFrame> &frames() const { return m_frames; }

private:
    static constexpr std::size_t geometryCount = ManifestColumns::geometry.size();

    void updateMetadata(const Table &table);
    QJsonObject newMetadata() const;

    QVector<ManifestFrame> m_frames;
    std::array<QString, geometryCount> m_texts;
    std::array<double, geometryCount> m_numbers{}; // values of m_texts
    QJsonObject m_metadata = newMetadata();        // made from m_numbers
};

void FrameList::append(const Table &table)
{
    updateMetadata(table);
    m_frames.append({table.field(ManifestColumns::File).toString(),
                     UtcText::fromText(table.field(ManifestColumns::ActualUtc).toString()),
                     m_metadata});
}

/// Replaces values in place. When keys come or go the object is rebuilt: it would never shrink.
void FrameList::updateMetadata(const Table &table)
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

/// Reads line by line, up to the first one that is too long.
class LineReader
{
public:
    explicit LineReader(QFile &file) : m_stream(&file) {}

    bool atEnd() const { return m_stream.atEnd(); }
    /// The next line; nothing at the end of the file and at a line that is too long.
    std::optional<QStringView> next();
    /// A sentence about the line that is too long; empty when there was none.
    QString remark() const;

private:
    static constexpr int maxCharacters = 1 << 20;

    QTextStream m_stream;
    QString m_line;
    qint64 m_number = 0; // of m_line, counted from 1
};

std::optional<QStringView> LineReader::next()
{
    if (m_line.size() > maxCharacters || !m_stream.readLineInto(&m_line, maxCharacters + 1))
        return std::nullopt;
    ++m_number;
    return m_line.size() > maxCharacters ? std::nullopt : std::make_optional(QStringView(m_line));
}

QString LineReader::remark() const
{
    if (m_line.size() <= maxCharacters)
        return {};
    return QStringLiteral("line %1 of manifest.csv is longer than 1 MB. Only the rows before it "
                          "are read.")
        .arg(m_number);
}

} // namespace

std::optional<ManifestFrames> ManifestReader::read(const QString &manifestPath, QString *errorText)
{
    QFile file(manifestPath);
    if (!RegularFile::open(file))
        return ErrorText::nothing(
            errorText,
            QStringLiteral("Cannot open %1").arg(QDir::toNativeSeparators(manifestPath)));
    file.setTextModeEnabled(true);
    LineReader lines(file);
    if (lines.atEnd())
        return ErrorText::nothing(errorText, QStringLiteral("manifest.csv is empty."));

    Table table;
    table.setHeader(lines.next().value_or(QStringView()));
    const QString accepted = toText(FrameStatus::Ok);
    QHash<int, FrameList> lists;
    while (const std::optional<QStringView> line = lines.next()) {
        const QStringView row = line->trimmed();
        if (row.isEmpty())
            continue;
        table.setRow(row);
        if (table.field(ManifestColumns::Status) == accepted)
            lists[table.field(ManifestColumns::SourceId).toInt()].append(table);
    }

    ManifestFrames frames;
    frames.remark = lines.remark();
    for (auto list = lists.cbegin(); list != lists.cend(); ++list)
        frames.bySource.insert(list.key(), list->frames());
    return frames;
}
