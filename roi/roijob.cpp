#include "roi/roijob.h"

#include "base/filenames.h"
#include "base/runtimeconfig.h"
#include "output/sessionfiles.h"
#include "roi/earlierfilm.h"
#include "roi/temporaryframes.h"

#include <QDir>
#include <QFile>

namespace {

/// At least two digits, so that films sort by number.
QString numberText(int number)
{
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

/// Shortens the region's name, then the folder's, if the file name would be too long. The number
/// keeps the names in a folder distinct.
QString filmName(const QString &folderName, const QString &number, const QString &regionName)
{
    const QString pattern = QStringLiteral("%1__ROI_%2_%3.mp4");
    const int room = EarlierFilm::maxNameBytes() - pattern.arg(QString(), number, QString()).size();
    const QString folderPart = FileNames::shortened(folderName, room);
    const int rest = room - QFile::encodeName(folderPart).size();
    return pattern.arg(folderPart, number, FileNames::shortened(regionName, rest));
}

/// The folder of one film's pictures, inside the temporary root.
QString framesFolderName(const QString &number, const QString &regionName)
{
    const QString name = QStringLiteral("roi_%1_%2").arg(number, regionName);
    return FileNames::shortened(name, FileNames::maxNameBytes);
}

} // namespace

RoiJob::RoiJob(const RoiVideoPlan &plan, const RoiFilmSource &filmed, const NumberedRoi &region)
    : m_plan(plan), m_filmed(filmed), m_region(region)
{
    const QDir folder(filmed.source.folder);
    const QString number = numberText(region.number);
    const QString regionName = FileNames::roiPart(region.roi.name);
    m_framesFolder = QDir(TemporaryFrames::root(filmed.source.folder))
                         .filePath(framesFolderName(number, regionName));
    m_film = folder.filePath(filmName(folder.dirName(), number, regionName));
}

RoiLook RoiJob::look() const
{
    return {m_plan.overlays, nickname(), m_filmed.scaleMetadata};
}

QString RoiJob::picturePath(int index) const
{
    return m_framesFolder + QLatin1Char('/') + SessionFiles::frame(index);
}

FilmOrder RoiJob::order() const
{
    FilmOrder order;
    order.program = RuntimeConfig::ffmpegPath();
    order.folder = m_framesFolder;
    order.inputPattern = SessionFiles::framePattern();
    order.film = m_film;
    order.fps = m_plan.fps;
    order.crf = m_plan.crf;
    order.pictures = m_plan.introFrames() + frames().size();
    return order;
}
