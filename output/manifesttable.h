#pragma once

#include "output/csvfields.h"
#include "output/manifestcolumns.h"

#include <QFile>
#include <QString>
#include <QTextStream>

#include <array>

/**
 * The rows of a manifest as texts by column, one at a time.
 *
 * Columns are found by their names; a column that is missing reads as empty, and so does a field
 * that a damaged line lacks. A line of more than 1 MB, which no manifest has, ends the reading.
 */
class ManifestTable final
{
public:
    /**
     * Opens @p manifestPath and reads its header.
     *
     * @return false when the file is empty, not a regular file or cannot be opened; @p errorText,
     *         which may be null, then says why
     */
    bool open(const QString &manifestPath, QString *errorText = nullptr);

    /// Goes to the next row that is not empty; false at the end.
    bool next();

    // Of the current row.
    QStringRef field(ManifestColumns::Column column) const
    {
        return m_fields.at(m_positions[column]);
    }
    qint64 lineNumber() const { return m_lineNumber; } ///< in the file, from 1
    /// Whether the file ends within it, as after a full disk or a power failure.
    bool isCutOff() const;

    /// A sentence about the line that is too long; empty when there was none.
    QString remark() const;

private:
    bool readLine();
    void readHeader();

    QFile m_file;
    QTextStream m_stream;
    QString m_line;
    qint64 m_lineNumber = 0;
    bool m_endsWithLine = true; // the file's last line is complete
    CsvFields m_fields;
    int m_headerFields = 0;
    std::array<int, ManifestColumns::Count> m_positions{}; // -1: the file has no such column
};
