#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <deque>

struct ManifestRow;

/**
 * Writes the ledger of a session: one complete row for each outcome, as soon as it is known.
 *
 * A row is passed to the system in one write, so that the file ends with a complete row when the
 * program dies; only a kill during that call can cut one, where it crosses a memory page. On
 * Windows, where line ends are translated, it takes two writes: the row, then its CR LF. A kill
 * between them loses only the line end; the row can still be read. Text is stored in the encoding
 * of the locale.
 */
class ManifestWriter final
{
public:
    /// Creates manifest.csv in @p sessionDirectory with its header line; not open on failure. One
    /// that was open before has to be closed.
    bool create(const QString &sessionDirectory);
    bool isOpen() const { return m_file.isOpen(); }
    /**
     * Appends a row and passes it to the system. A row that does not fit on the disk is kept in
     * memory and written, complete and in order, with a later one. Does nothing while the file is
     * not open.
     *
     * @return false when rows are waiting; @p errorText, which may be null, then says why
     */
    bool append(const ManifestRow &row, QString *errorText = nullptr);
    /// Tries once more to write waiting rows and closes the file; false when rows are lost.
    bool close();

private:
    bool writeWaiting(QString *errorText);
    bool writeWhole(const QByteArray &line, QString *errorText);

    QFile m_file;
    qint64 m_wholeBytes = 0;          // length of the file up to its last whole line
    std::deque<QByteArray> m_waiting; // lines that are not on disk yet, oldest first
};
