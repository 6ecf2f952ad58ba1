#include "roi/filminglock.h"

#include "base/errortext.h"

#include <QDir>
#include <QFileInfo>

// The lock file is in the session, so that computers that share the folder see it, too.
FilmingLock::FilmingLock(const QString &sessionDirectory)
    : m_path(QDir(sessionDirectory).filePath(QStringLiteral(".roi_video.lock"))), m_file(m_path)
{
    m_file.setStaleLockTime(0); // films may take hours: only a program that is gone makes it stale
    const QFileInfo file(m_path);
    const bool isUsable =
        file.isFile() || !file.exists(); // QLockFile would wait for a writer of a pipe
    m_isTaken = !isUsable || (!m_file.tryLock() && m_file.error() == QLockFile::LockFailedError);
}

bool FilmingLock::isFree(QString *errorText) const
{
    return !m_isTaken ||
           ErrorText::fail(
               errorText,
               QStringLiteral("Another Orvik window is creating ROI videos of this session. Try "
                              "again when it has finished.\n\nIf there is no such window, on this "
                              "computer or on another one that uses the folder, delete this "
                              "file:\n%1")
                   .arg(QDir::toNativeSeparators(m_path)));
}
