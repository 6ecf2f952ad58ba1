#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <deque>

struct ManifestRow;

/**
 * The ledger of a session: one whole row on disk for each outcome, as soon as it is known.
 *
 * A row reaches the system in one write, so that the file ends with a whole row when the program
 * dies; only a kill within that very call can cut one, where it crosses a memory page. On Windows,
 * where line ends are translated, it takes two: the row, then its CR LF; a kill between them costs
 * the last row its line end, without which it is read all the same. Text is stored in the encoding
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
     * Appends a row and hands it to the system. A row that the disk has no room for is kept and
     * written, whole and in its place, with a later one. Does nothing while the file is not open.
     *
     * @return false when rows are waiting; @p errorText, which may be null, then says why
     */
    bool append(const ManifestRow &row, QString *errorText = nullptr);
    /// Tries waiting rows once more and closes the file; false when rows are lost.
    bool close();

private:
    bool writeWaiting(QString *errorText);
    bool writeWhole(const QByteArray &line, QString *errorText);

    QFile m_file;
    qint64 m_wholeBytes = 0;          // length of the file up to its last whole line
    std::deque<QByteArray> m_waiting; // lines that are not on disk yet, oldest first
};
