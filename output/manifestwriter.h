#pragma once

#include <QFile>
#include <QString>

struct ManifestRow;

/**
 * The ledger of a session: one whole row on disk for each outcome, as soon as it is known.
 */
class ManifestWriter
{
public:
    /// Creates manifest.csv in @p sessionDirectory with its header line.
    bool create(const QString &sessionDirectory);
    bool isOpen() const { return m_file.isOpen(); }
    /**
     * Appends a row and hands it to the system. A row that the disk has no room for is kept and
     * written, whole and in its place, with a later one.
     *
     * @return false when rows are waiting; @p errorText, which may be null, then says why
     */
    bool append(const ManifestRow &row, QString *errorText = nullptr);
    /// Tries waiting rows once more and closes the file; false when rows are lost.
    bool close();

private:
    QFile m_file;
};
