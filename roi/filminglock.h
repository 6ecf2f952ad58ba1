#pragma once

#include <QLockFile>
#include <QString>

/**
 * The right to make films in a session, which one window at a time has.
 *
 * All films of a session pass through the same temporary folders. The right ends with this object,
 * or with the program that had it, however that ended.
 */
class FilmingLock final
{
public:
    /// Asks for the right without waiting.
    explicit FilmingLock(const QString &sessionDirectory);

    /**
     * Whether no other window has the right.
     *
     * True also where the disk takes no lock file: it will not take films either, and says better
     * why.
     *
     * @param errorText  may be null; a sentence for the user, set only when the right is refused
     */
    bool isFree(QString *errorText = nullptr) const;

private:
    QString m_path;
    QLockFile m_file;
    bool m_isTaken;
};
