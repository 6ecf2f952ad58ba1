#include "output/framecleanup.h"

#include "output/sessionfiles.h"

#include <QDir>
#include <QFileInfo>

namespace {

void removeFramesIn(QDir folder)
{
    folder.setNameFilters({SessionFiles::frameFilter()});
    folder.setFilter(QDir::Files | QDir::CaseSensitive);
    folder.setSorting(QDir::Unsorted);
    const QStringList names = folder.entryList();
    for (const QString &name : names)
        folder.remove(name);
}

} // namespace

void FrameCleanup::removeFrames(const QString &sourceDirectory)
{
    QDir source(sourceDirectory);
    removeFramesIn(source);
    const QString videoFrames = source.filePath(SessionFiles::videoFramesFolder());
    if (QFileInfo(videoFrames).isSymLink())
        return; // a link is not the folder that the session made: its target is left alone
    removeFramesIn(QDir(videoFrames));
    source.rmdir(SessionFiles::videoFramesFolder()); // only when nothing else is left in it
}
