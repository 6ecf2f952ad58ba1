#include "roi/roivideogenerator.h"

#include "base/filenames.h"
#include "base/runtimeconfig.h"
#include "imaging/frameannotation.h"
#include "imaging/framedecoder.h"
#include "imaging/metricscale.h"
#include "imaging/pngwriter.h"
#include "output/sessionfiles.h"
#include "roi/roiframe.h"
#include "roi/roigeometry.h"
#include "roi/scalelookup.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>

namespace {

/// The folder below a datasource's own that holds pictures on their way to the encoder.
QString temporaryRoot(const RoiSource &source)
{
    return source.folder + QStringLiteral("/.roi_video_frames");
}

/// Two digits, so that films sort by it.
QString numberText(int number)
{
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

/// Removes @p path and all in it; true when nothing is left there. A link is taken away itself;
/// where it leads is not ours.
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
    QString outputFile;

    Job(const RoiFilmSource &filmedSource, const NumberedRoi &filmedRegion)
        : filmed(filmedSource), region(filmedRegion)
    {
        const QString number = numberText(region.number);
        const QString namePart = FileNames::roiPart(region.roi.name);
        framesFolder =
            temporaryRoot(filmed.source) + QStringLiteral("/roi_%1_%2").arg(number, namePart);
        outputFile =
            filmed.source.folder + QStringLiteral("/%1__ROI_%2_%3.mp4")
                                       .arg(QDir(filmed.source.folder).dirName(), number, namePart);
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

RoiVideoGenerator::Outcome RoiVideoGenerator::run(const RoiVideoPlan &plan)
{
    m_plan = plan;
    m_errorText.clear();
    m_createdVideos = 0;
    m_writtenFrames = 0;
    m_canceled = false;
    for (const RoiFilmSource &filmed : qAsConst(m_plan.sources)) {
        // A missing encoder is named before an hour is spent on pictures for it.
        if (RoiEncoder::isPresent(RuntimeConfig::ffmpegPath(), &m_errorText) && filmSource(filmed))
            continue;
        if (!m_canceled)
            return Outcome::Failed;
        m_errorText.clear(); // of an encoder that was killed
        return Outcome::Canceled;
    }
    return Outcome::Completed;
}

void RoiVideoGenerator::cancel()
{
    m_canceled = true;
    m_encoder.cancel();
}

bool RoiVideoGenerator::filmSource(const RoiFilmSource &filmed)
{
    if (!RoiSession::mayWriteTo(filmed.source, m_plan.sessionDirectory, &m_errorText))
        return false;
    const QString root = temporaryRoot(filmed.source);
    // Pictures that an earlier run left behind would follow those of this one into the film.
    bool done =
        (removeTemporary(root) && QDir().mkpath(root)) ||
        fail(tr("Cannot create temporary directory:\n%1").arg(QDir::toNativeSeparators(root)));
    for (const NumberedRoi &region : qAsConst(m_plan.rois))
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
    return PngWriter::save(picture, path, PngWriter::Packing::Quick);
}

/// A cut changes no pixel's length, so it is the full frame's width that counts.
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
    emit labelChanged(tr("Encoding %1 - %2...").arg(job.nickname(), job.roi().name));
    emit logMessage(QStringLiteral("ROI ffmpeg: %1").arg(QDir::toNativeSeparators(job.outputFile)));
    QString reason;
    if (!m_encoder.run(orderFor(job), &reason))
        return fail(
            tr("FFmpeg failed for %1 / %2:\n\n%3").arg(job.nickname(), job.roi().name, reason));
    ++m_createdVideos;
    emit logMessage(
        QStringLiteral("ROI video completed: %1%2").arg(job.outputFile, completionDetails(job)));
    return true;
}

FilmOrder RoiVideoGenerator::orderFor(const Job &job) const
{
    FilmOrder order;
    order.program = RuntimeConfig::ffmpegPath();
    order.folder = job.framesFolder;
    order.inputPattern = SessionFiles::framePattern();
    order.film = job.outputFile;
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

/// Always false, for the caller to hand on.
bool RoiVideoGenerator::fail(const QString &text)
{
    m_errorText = text;
    return false;
}
