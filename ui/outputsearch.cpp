#include "ui/outputsearch.h"

#include "output/sessionfiles.h"

#include <QDateTime>
#include <QDirIterator>

namespace {

/// The first of the files with the latest modification time; an empty one when none matches.
QFileInfo newestFile(const QString &root, const QStringList &nameFilters)
{
    QFileInfo newest;
    QDateTime newestTime;
    QDirIterator it(root, nameFilters, QDir::Files | QDir::Readable | QDir::CaseSensitive,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        const QDateTime time = it.fileInfo().lastModified();
        if (newestTime.isNull() || time > newestTime) {
            newest = it.fileInfo();
            newestTime = time;
        }
    }
    return newest;
}

} // namespace

QString OutputSearch::newestVideo(const QString &root)
{
    const QFileInfo file = newestFile(root, {QStringLiteral("*.mp4"), QStringLiteral("*.MP4")});
    return file.filePath().isEmpty() ? QString() : file.absoluteFilePath();
}

QString OutputSearch::videoStartFolder(const QString &root, const QString &lastFolder)
{
    if (QFileInfo(lastFolder).isDir())
        return lastFolder;
    const QString newest = newestVideo(root);
    return newest.isEmpty() ? root : QFileInfo(newest).absolutePath();
}

QString OutputSearch::newestSession(const QString &root)
{
    const QFileInfo file = newestFile(root, {SessionFiles::descriptor()});
    return file.filePath().isEmpty() ? QString() : file.absolutePath();
}
