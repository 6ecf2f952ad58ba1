#pragma once

#include <QLockFile>
#include <QString>

/**
 * Keeps two windows from making films of one session at the same time.
 *
 * Both would write to the same temporary folders. The lock is released when this object is
 * destroyed; the lock of a killed program is ignored.
 */
class FilmingLock final
{
public:
    /// Tries to lock the session, without waiting.
    explicit FilmingLock(const QString &sessionDirectory);

    /**
     * Whether no other window has locked the session.
     *
     * True also where no lock file can be created, as on a full or read-only disk: writing the
     * films then fails with a more useful message.
     *
     * @param errorText  may be null; a sentence for the user, set only when the session is locked
     */
    bool isFree(QString *errorText = nullptr) const;

private:
    QString m_path;
    QLockFile m_file;
    bool m_isTaken;
};
