#include "roi/filminglock.h"

#include "base/errortext.h"

#include <QDir>
#include <QFileInfo>

// It lies in the session itself, so that it is the same for all who share that folder.
FilmingLock::FilmingLock(const QString &sessionDirectory)
    : m_path(QDir(sessionDirectory).filePath(QStringLiteral(".roi_video.lock"))), m_file(m_path)
{
    m_file.setStaleLockTime(0); // films may take hours: a lock is void when its program is gone
    const QFileInfo file(m_path);
    const bool isUsable = file.isFile() || !file.exists(); // Qt would wait for a pipe to be written
    m_isTaken = !isUsable || (!m_file.tryLock(0) && m_file.error() == QLockFile::LockFailedError);
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
