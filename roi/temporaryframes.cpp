#include "roi/temporaryframes.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr int turnMs = 5;

/// Removing a whole folder at once would take longer than a window may be without answer.
void removeFilesOf(const QString &folder, const std::function<void()> &pause)
{
    QElapsedTimer turn;
    turn.start();
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::System,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile::remove(files.next());
        if (turn.elapsed() < turnMs)
            continue;
        pause();
        turn.restart();
    }
}

} // namespace

QString TemporaryFrames::root(const QString &folder)
{
    return folder + QStringLiteral("/.roi_video_frames");
}

bool TemporaryFrames::remove(const QString &path, const std::function<void()> &pause)
{
    const QFileInfo info(path);
    if (info.isSymLink())
        return QFile::remove(path);
    if (!info.isDir())
        return !info.exists() || QFile::remove(path);
    removeFilesOf(path, pause);
    return QDir(path).removeRecursively();
}
