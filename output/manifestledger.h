#pragma once

#include "output/manifestrow.h"
#include "output/manifesttable.h"

#include <optional>

/**
 * Reads the outcomes of all requests, accepted or not, from a manifest, one row at a time.
 *
 * Invalid rows are skipped and counted: those whose source id is negative or not a number, or whose
 * status is none of the six.
 */
class ManifestLedger final
{
public:
    /// As ManifestTable::open().
    bool open(const QString &manifestPath, QString *errorText = nullptr);

    /**
     * The next outcome; nothing at the end.
     *
     * Where the row has no readable value, a time is invalid, a number 0 and an image id below 1.
     * The metadata is left empty.
     */
    std::optional<ManifestRow> next();

    qint64 lineNumber() const { return m_table.lineNumber(); } ///< of the row that next() gave
    qint64 damagedRows() const { return m_damagedRows; }       ///< left out so far
    qint64 firstDamagedLine() const { return m_firstDamagedLine; }
    /// Sentences about what could not be read; complete once next() has reached the end.
    QStringList remarks() const;

private:
    void countDamagedRow();

    ManifestTable m_table;
    qint64 m_damagedRows = 0;
    qint64 m_firstDamagedLine = 0;
    bool m_isCutOff = false;
};
