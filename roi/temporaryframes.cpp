#include "roi/temporaryframes.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr int turnMs = 5;

/// The pictures of a film lie flat in their folder.
void removeFilesOf(const QString &folder, const std::function<void()> &pause)
{
    QElapsedTimer turn;
    turn.start();
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::System);
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
    const QStringList folders =
        QDir(path).entryList(QDir::Dirs | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot);
    for (const QString &folder : folders)
        removeFilesOf(QDir(path).filePath(folder), pause);
    removeFilesOf(path, pause);
    return QDir(path).removeRecursively();
}
