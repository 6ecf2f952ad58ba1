#pragma once

#include "output/manifestrow.h"
#include "output/manifesttable.h"

#include <optional>

/**
 * The outcomes of all requests, accepted or not, one row of a manifest at a time.
 *
 * Rows that no session writes are left out and counted: those of a source id that is no number or
 * negative, or of none of the six statuses.
 */
class ManifestLedger final
{
public:
    /// As ManifestTable::open().
    bool open(const QString &manifestPath, QString *errorText = nullptr);

    /**
     * The next outcome; nothing at the end.
     *
     * A time that is missing or unreadable is invalid, a number 0, the image id of a row without
     * one below 1. The metadata is left empty.
     */
    std::optional<ManifestRow> next();

    qint64 lineNumber() const { return m_table.lineNumber(); } ///< of the row that next() gave
    qint64 damagedRows() const { return m_damagedRows; }       ///< left out so far
    qint64 firstDamagedLine() const { return m_firstDamagedLine; }
    /// Sentences on what of the file could not be read, once next() has come to the end.
    QStringList remarks() const;

private:
    void countDamagedRow();

    ManifestTable m_table;
    qint64 m_damagedRows = 0;
    qint64 m_firstDamagedLine = 0;
    bool m_isCutOff = false;
};
