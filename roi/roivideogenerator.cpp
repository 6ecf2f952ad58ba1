#include "roi/roivideogenerator.h"

#include "base/runtimeconfig.h"
#include "imaging/framedecoder.h"
#include "imaging/pngwriter.h"
#include "output/sessionfiles.h"
#include "roi/earlierfilm.h"
#include "roi/filminglock.h"
#include "roi/roigeometry.h"
#include "roi/temporaryframes.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QStorageInfo>

#include <algorithm>
#include <utility>

namespace {

/// Pictures of later films never take the room that the present one needs.
constexpr qint64 spareBytes = Q_INT64_C(4) << 30;

bool canWriteAhead(const QString &folder)
{
    return QStorageInfo(folder).bytesAvailable() > spareBytes;
}

} // namespace

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
    m_films.clear();
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
    const QString root = TemporaryFrames::root(filmed.source.folder);
    // Pictures left behind by an earlier run would end up in this film.
    bool done =
        (removeTemporary(root) && QDir().mkpath(root)) ||
        fail(tr("Cannot create temporary directory:\n%1").arg(QDir::toNativeSeparators(root)));
    Jobs jobs;
    for (const NumberedRoi &region : std::as_const(m_plan.rois))
        jobs.emplace_back(m_plan, filmed, region);
    for (size_t current = 0; current < jobs.size(); ++current)
        done = done && !m_canceled && filmRoi(jobs, current);
    m_zoom.reset();
    removeTemporary(root);
    return done;
}

bool RoiVideoGenerator::filmRoi(Jobs &jobs, size_t current)
{
    const RoiJob &job = jobs.at(current);
    if (!QDir().mkpath(job.framesFolder()))
        return fail(tr("Cannot create temporary directory:\n%1")
                        .arg(QDir::toNativeSeparators(job.framesFolder())));
    if (!writeIntro(job))
        return false;
    if (current + 1 == jobs.size())
        m_zoom.reset(); // as large as two frames
    if (!writeSequence(jobs, current) || !encode(job))
        return false;
    removeTemporary(job.framesFolder());
    return true;
}

bool RoiVideoGenerator::writeIntro(const RoiJob &job)
{
    const int count = m_plan.introFrames();
    const RoiSourceFrame &first = job.frames().first();
    if (m_plan.intro && !decodeForIntro(first))
        return false;
    for (int index = 0; index < count; ++index) {
        emit labelChanged(tr("%1 - %2\nzoom %3 / %4")
                              .arg(job.nickname(), job.roi().name, QString::number(index + 1),
                                   QString::number(count)));
        const QString path = job.picturePath(index);
        const QImage picture =
            RoiPicture::ofIntro(*m_zoom, first, job.roi(), job.look(), index, count);
        if (!handleEvents())
            return false;
        if (!PngWriter::save(picture, path))
            return fail(
                tr("Cannot save temporary zoom frame:\n%1").arg(QDir::toNativeSeparators(path)));
        if (!pictureDone())
            return false;
    }
    return true;
}

/// The introductions of all regions begin with the same picture.
bool RoiVideoGenerator::decodeForIntro(const RoiSourceFrame &frame)
{
    if (m_zoom)
        return true;
    const QImage decoded = FrameDecoder::decode(frame.file);
    if (decoded.isNull())
        return fail(tr("Cannot decode first frame for zoom intro:\n%1")
                        .arg(QDir::toNativeSeparators(frame.file)));
    m_zoom.emplace(decoded);
    return handleEvents();
}

bool RoiVideoGenerator::writeSequence(Jobs &jobs, size_t current)
{
    const RoiJob &job = jobs.at(current);
    const int count = job.frames().size();
    for (int index = 0; index < count; ++index) {
        emit labelChanged(tr("%1 - %2\nframe %3 / %4")
                              .arg(job.nickname(), job.roi().name, QString::number(index + 1),
                                   QString::number(count)));
        if ((index >= job.picturesAhead() && !writeFrame(jobs, current, index)) || !pictureDone())
            return false;
    }
    return true;
}

bool RoiVideoGenerator::writeFrame(Jobs &jobs, size_t current, int index)
{
    const RoiJob &job = jobs.at(current);
    const RoiSourceFrame &frame = job.frames().at(index);
    const QImage decoded = FrameDecoder::decode(frame.file);
    if (decoded.isNull())
        return fail(tr("Cannot decode frame:\n%1").arg(QDir::toNativeSeparators(frame.file)));
    if (!handleEvents())
        return false;
    const QImage picture = RoiPicture::ofFrame(decoded, frame, job.roi(), job.look());
    if (!handleEvents())
        return false;
    const QString path = job.picturePath(job.firstSequencePicture() + index);
    if (!PngWriter::save(picture, path))
        return fail(tr("Cannot save temporary ROI frame:\n%1").arg(QDir::toNativeSeparators(path)));
    return writeAhead(jobs, current, decoded, index);
}

/// Cuts the regions that are yet to come from the same frame. What goes wrong here is told when
/// their turn comes.
bool RoiVideoGenerator::writeAhead(Jobs &jobs, size_t current, const QImage &decoded, int index)
{
    if (current + 1 == jobs.size() || !canWriteAhead(jobs.at(current).framesFolder()))
        return true;
    for (size_t next = current + 1; next < jobs.size(); ++next) {
        RoiJob &job = jobs.at(next);
        if (!handleEvents())
            return false;
        if (job.picturesAhead() != index || !QDir().mkpath(job.framesFolder()))
            continue;
        const QImage picture =
            RoiPicture::ofFrame(decoded, job.frames().at(index), job.roi(), job.look());
        if (!handleEvents())
            return false;
        if (PngWriter::save(picture, job.picturePath(job.firstSequencePicture() + index)))
            job.countPictureAhead();
    }
    return true;
}

bool RoiVideoGenerator::pictureDone()
{
    emit progressChanged(++m_writtenFrames);
    return handleEvents();
}

/// Lets the windows answer; false when the user has canceled.
bool RoiVideoGenerator::handleEvents()
{
    QCoreApplication::processEvents();
    return !m_canceled;
}

bool RoiVideoGenerator::encode(const RoiJob &job)
{
    const FilmOrder order = job.order();
    const int found = QDir(order.folder)
                          .entryList({SessionFiles::frameFilter()}, QDir::Files, QDir::Unsorted)
                          .size();
    if (found != order.pictures)
        return fail(tr("%1 temporary ROI frames were written, but %2 are there:\n%3")
                        .arg(QString::number(order.pictures), QString::number(found),
                             QDir::toNativeSeparators(order.folder)));
    emit labelChanged(tr("Encoding %1 - %2...").arg(job.nickname(), job.roi().name));
    emit logMessage(QStringLiteral("ROI ffmpeg: %1").arg(QDir::toNativeSeparators(job.film())));
    QString reason;
    if (!m_encoder.run(order, &reason))
        return fail(
            tr("FFmpeg failed for %1 / %2:\n\n%3").arg(job.nickname(), job.roi().name, reason));
    m_films.append({job.nickname(), job.roi().name, job.film(), order.pictures, order.fps});
    emit logMessage(
        QStringLiteral("ROI video completed: %1%2").arg(job.film(), completionDetails(job)));
    return true;
}

QString RoiVideoGenerator::completionDetails(const RoiJob &job) const
{
    QString details;
    if (m_plan.intro)
        details += QStringLiteral("; intro zoom %1 s").arg(m_plan.introSeconds);
    if (RoiGeometry::reducedRotation(job.roi().rotation) != 0)
        details += QStringLiteral("; rotation %1 deg").arg(job.roi().rotation);
    return details;
}

bool RoiVideoGenerator::removeTemporary(const QString &path)
{
    return TemporaryFrames::remove(path, [] { QCoreApplication::processEvents(); });
}

/// Always returns false, for the caller to return.
bool RoiVideoGenerator::fail(const QString &text)
{
    m_errorText = text;
    return false;
}
