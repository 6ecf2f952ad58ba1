#include "roi/roivideogenerator.h"

#include "base/filenames.h"
#include "base/runtimeconfig.h"
#include "imaging/frameannotation.h"
#include "imaging/framedecoder.h"
#include "imaging/metricscale.h"
#include "imaging/pngwriter.h"
#include "output/sessionfiles.h"
#include "roi/earlierfilm.h"
#include "roi/filminglock.h"
#include "roi/roiframe.h"
#include "roi/roigeometry.h"
#include "roi/scalelookup.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <algorithm>
#include <utility>

namespace {

/// The folder inside a datasource's folder that holds the pictures for the encoder.
QString temporaryRoot(const RoiSource &source)
{
    return source.folder + QStringLiteral("/.roi_video_frames");
}

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
QString jobFolderName(const QString &number, const QString &regionName)
{
    const QString name = QStringLiteral("roi_%1_%2").arg(number, regionName);
    return FileNames::shortened(name, FileNames::maxNameBytes);
}

/// Removes @p path and everything in it; true when nothing is left. Of a link only the link itself
/// is removed.
bool removeTemporary(const QString &path)
{
    const QFileInfo info(path);
    if (info.isSymLink())
        return QFile::remove(path);
    if (info.isDir())
        return QDir(path).removeRecursively();
    return !info.exists() || QFile::remove(path);
}

} // namespace

/// One region of one datasource.
struct RoiVideoGenerator::Job
{
    const RoiFilmSource &filmed;
    const NumberedRoi &region;
    QString framesFolder;
    QString film;

    Job(const RoiFilmSource &filmedSource, const NumberedRoi &filmedRegion)
        : filmed(filmedSource), region(filmedRegion)
    {
        const RoiSource &source = filmed.source;
        const QString number = numberText(region.number);
        const QString regionName = FileNames::roiPart(region.roi.name);
        framesFolder = QDir(temporaryRoot(source)).filePath(jobFolderName(number, regionName));
        film = QDir(source.folder)
                   .filePath(filmName(QDir(source.folder).dirName(), number, regionName));
    }

    const Roi &roi() const { return region.roi; }
    const QString &nickname() const { return filmed.source.nickname; }
    const QVector<RoiSourceFrame> &frames() const { return filmed.source.frames; }
    QString picturePath(int index) const
    {
        return framesFolder + QLatin1Char('/') + SessionFiles::frame(index);
    }
};

int RoiVideoPlan::introFrames() const
{
    return intro ? RoiGeometry::introFrameCount(introSeconds, fps) : 0;
}

int RoiVideoPlan::totalFrames() const
{
    int perRegion = 0;
    for (const RoiFilmSource &filmed : sources)
        perRegion += introFrames() + filmed.source.frames.size();
    return perRegion * rois.size();
}

QStringList RoiVideoGenerator::restoreEarlierFilms(const StoredSession &session)
{
    QStringList folders;
    for (const RoiSource &source : session.sources) {
        if (RoiSession::mayWriteTo(source, session.directory) &&
            EarlierFilm::isWaitingIn(source.folder))
            folders.append(source.folder);
    }
    if (folders.isEmpty())
        return {};
    const FilmingLock lock(session.directory);
    if (!lock.isFree())
        return {};
    QStringList films;
    for (const QString &folder : std::as_const(folders))
        films += EarlierFilm::restoreAll(folder);
    QStringList lines;
    for (const QString &film : std::as_const(films))
        lines.append(QStringLiteral("ROI video restored after a run that was cut short: %1")
                         .arg(QDir::toNativeSeparators(film)));
    return lines;
}

RoiVideoGenerator::Outcome RoiVideoGenerator::run(const RoiVideoPlan &plan)
{
    m_plan = plan;
    m_errorText.clear();
    m_createdVideos = 0;
    m_writtenFrames = 0;
    m_canceled = false;
    if (filmSources())
        return Outcome::Completed;
    if (!m_canceled)
        return Outcome::Failed;
    m_errorText.clear(); // it tells of the encoder that was killed
    return Outcome::Canceled;
}

void RoiVideoGenerator::cancel()
{
    m_canceled = true;
    m_encoder.cancel();
}

bool RoiVideoGenerator::filmSources()
{
    const FilmingLock lock(m_plan.sessionDirectory);
    if (!lock.isFree(&m_errorText))
        return false;
    // A missing encoder is reported before an hour is spent on pictures for it.
    return std::all_of(
        m_plan.sources.cbegin(), m_plan.sources.cend(), [this](const RoiFilmSource &filmed) {
            return RoiEncoder::isPresent(RuntimeConfig::ffmpegPath(), &m_errorText) &&
                   filmSource(filmed);
        });
}

bool RoiVideoGenerator::filmSource(const RoiFilmSource &filmed)
{
    if (!RoiSession::mayWriteTo(filmed.source, m_plan.sessionDirectory, &m_errorText))
        return false;
    const QString root = temporaryRoot(filmed.source);
    // Pictures left behind by an earlier run would end up in this film.
    bool done =
        (removeTemporary(root) && QDir().mkpath(root)) ||
        fail(tr("Cannot create temporary directory:\n%1").arg(QDir::toNativeSeparators(root)));
    for (const NumberedRoi &region : std::as_const(m_plan.rois))
        done = done && !m_canceled && filmRoi(Job(filmed, region));
    removeTemporary(root);
    return done;
}

bool RoiVideoGenerator::filmRoi(const Job &job)
{
    if (!QDir().mkpath(job.framesFolder))
        return fail(tr("Cannot create temporary directory:\n%1")
                        .arg(QDir::toNativeSeparators(job.framesFolder)));
    return (m_plan.introFrames() == 0 || writeIntro(job)) && writeSequence(job) && encode(job);
}

bool RoiVideoGenerator::writeIntro(const Job &job)
{
    const RoiSourceFrame &first = job.frames().first();
    const QImage decoded = FrameDecoder::decode(first.file);
    if (decoded.isNull())
        return fail(tr("Cannot decode first frame for zoom intro:\n%1")
                        .arg(QDir::toNativeSeparators(first.file)));
    const ZoomSource source(decoded);
    const QRect region = RoiGeometry::pixelRect(job.roi().rect, source.frameSize());
    const double frameKm = frameKmPerPixel(job, first, source.frameSize().width());

    const int count = m_plan.introFrames();
    for (int index = 0; index < count; ++index) {
        emit labelChanged(tr("%1 - %2\nzoom %3 / %4")
                              .arg(job.nickname(), job.roi().name, QString::number(index + 1),
                                   QString::number(count)));
        const QRectF view = RoiGeometry::zoomView(region, source.frameSize(), index, count);
        const double km =
            RoiFrame::zoomKmPerPixel(frameKm, view, region.size(), job.roi().rotation);
        const QString path = job.picturePath(index);
        if (!writePicture(job, source.picture(view, region.size()), first.actualUtc, km, path))
            return fail(
                tr("Cannot save temporary zoom frame:\n%1").arg(QDir::toNativeSeparators(path)));
        if (!pictureDone())
            return false;
    }
    return true;
}

bool RoiVideoGenerator::writeSequence(const Job &job)
{
    int index = 0;
    for (const RoiSourceFrame &frame : job.frames()) {
        emit labelChanged(tr("%1 - %2\nframe %3 / %4")
                              .arg(job.nickname(), job.roi().name, QString::number(index + 1),
                                   QString::number(job.frames().size())));
        const QImage decoded = FrameDecoder::decode(frame.file);
        if (decoded.isNull())
            return fail(tr("Cannot decode frame:\n%1").arg(QDir::toNativeSeparators(frame.file)));
        const QRect pixels = RoiGeometry::pixelRect(job.roi().rect, decoded.size());
        const double km = frameKmPerPixel(job, frame, decoded.width());
        const QString path = job.picturePath(m_plan.introFrames() + index);
        if (!writePicture(job, RoiFrame::crop(decoded, pixels), frame.actualUtc, km, path))
            return fail(
                tr("Cannot save temporary ROI frame:\n%1").arg(QDir::toNativeSeparators(path)));
        if (!pictureDone())
            return false;
        ++index;
    }
    return true;
}

bool RoiVideoGenerator::writePicture(const Job &job, const QImage &upright, const QDateTime &utc,
                                     double kmPerPixel, const QString &path) const
{
    QImage picture = RoiFrame::turned(upright, job.roi().rotation);
    if (m_plan.timestampOverlay || m_plan.sourceOverlay || m_plan.scaleOverlay)
        drawFrameAnnotations(picture, utc, job.nickname(), m_plan.timestampOverlay,
                             m_plan.sourceOverlay, m_plan.scaleOverlay, kmPerPixel);
    return PngWriter::save(picture, path);
}

/// Cropping does not change the length of a pixel, so the width of the full frame counts.
double RoiVideoGenerator::frameKmPerPixel(const Job &job, const RoiSourceFrame &frame,
                                          int frameWidthPx) const
{
    const bool own = ScaleLookup::isUsable(frame.metadata);
    return MetricScale::kmPerPixel(own ? frame.metadata : job.filmed.scaleMetadata, frameWidthPx);
}

bool RoiVideoGenerator::pictureDone()
{
    emit progressChanged(++m_writtenFrames);
    QCoreApplication::processEvents();
    return !m_canceled;
}

bool RoiVideoGenerator::encode(const Job &job)
{
    const FilmOrder order = orderFor(job);
    const QDir folder(job.framesFolder);
    const int found = folder.entryList({SessionFiles::frameFilter()}, QDir::Files).size();
    if (found != order.pictures)
        return fail(tr("%1 temporary ROI frames were written, but %2 are there:\n%3")
                        .arg(QString::number(order.pictures), QString::number(found),
                             QDir::toNativeSeparators(job.framesFolder)));
    emit labelChanged(tr("Encoding %1 - %2...").arg(job.nickname(), job.roi().name));
    emit logMessage(QStringLiteral("ROI ffmpeg: %1").arg(QDir::toNativeSeparators(job.film)));
    QString reason;
    if (!m_encoder.run(order, &reason))
        return fail(
            tr("FFmpeg failed for %1 / %2:\n\n%3").arg(job.nickname(), job.roi().name, reason));
    ++m_createdVideos;
    emit logMessage(
        QStringLiteral("ROI video completed: %1%2").arg(job.film, completionDetails(job)));
    return true;
}

FilmOrder RoiVideoGenerator::orderFor(const Job &job) const
{
    FilmOrder order;
    order.program = RuntimeConfig::ffmpegPath();
    order.folder = job.framesFolder;
    order.inputPattern = SessionFiles::framePattern();
    order.film = job.film;
    order.fps = m_plan.fps;
    order.crf = m_plan.crf;
    order.pictures = m_plan.introFrames() + job.frames().size();
    return order;
}

QString RoiVideoGenerator::completionDetails(const Job &job) const
{
    QString details;
    if (m_plan.introFrames() > 0)
        details += QStringLiteral("; intro zoom %1 s").arg(m_plan.introSeconds);
    if (RoiGeometry::reducedRotation(job.roi().rotation) != 0)
        details += QStringLiteral("; rotation %1 deg").arg(job.roi().rotation);
    return details;
}

/// Always returns false, for the caller to return.
bool RoiVideoGenerator::fail(const QString &text)
{
    m_errorText = text;
    return false;
}
