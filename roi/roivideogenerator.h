#pragma once

#include "roi/roiencoder.h"
#include "roi/roisession.h"
#include "roi/roiset.h"

#include <QObject>

class QImage;

/// A region to film, with its position in the list, by which its films are numbered.
struct NumberedRoi
{
    int number = 1; ///< counted from 1, regions that are not filmed included
    Roi roi;
};

/// A datasource to film.
struct RoiFilmSource
{
    RoiSource source;          ///< with at least one frame
    QJsonObject scaleMetadata; ///< for frames that have none of their own; may be empty
};

/// Everything that one generation run needs to know.
struct RoiVideoPlan
{
    QString sessionDirectory;
    QVector<RoiFilmSource> sources;
    QVector<NumberedRoi> rois;
    int fps = 25;
    int crf = 18;
    bool timestampOverlay = true;
    bool sourceOverlay = true;
    bool scaleOverlay = true;
    bool intro = false;
    double introSeconds = 2.5;

    int introFrames() const; ///< per film; 0 without introduction
    int totalFrames() const; ///< of all films
};

/**
 * Makes one film per region and datasource from the stored frames, which are only read.
 *
 * The pictures are written to a temporary folder inside the datasource's folder, where ffmpeg reads
 * them. It is removed when the datasource is done, also after a failure or a cancel.
 */
class RoiVideoGenerator final : public QObject
{
    Q_OBJECT

public:
    enum class Outcome { Completed, Canceled, Failed };

    using QObject::QObject;

    /**
     * Restores earlier films of @p session that were kept aside by a program that was killed.
     *
     * Does nothing while another window is making films of this session.
     *
     * @return lines for the log, one for each restored film
     */
    static QStringList restoreEarlierFilms(const StoredSession &session);

    int createdVideos() const { return m_createdVideos; }
    QString errorText() const { return m_errorText; } ///< empty unless the run failed

    /// Makes all films of the plan; pending events are processed after each picture.
    Outcome run(const RoiVideoPlan &plan);

public slots:
    /// Makes run() return after the current picture. A running encoder is killed, which takes up to
    /// a second.
    void cancel();

signals:
    /// A line for the log.
    void logMessage(const QString &text);
    /// A description of the next step, sent before each picture and each encoding.
    void labelChanged(const QString &text);
    /// A picture has been written; @p frames is the number written in this run so far.
    void progressChanged(int frames);

private:
    struct Job;

    bool filmSources();
    bool filmSource(const RoiFilmSource &filmed);
    bool filmRoi(const Job &job);
    bool writeIntro(const Job &job);
    bool writeSequence(const Job &job);
    bool writePicture(const Job &job, const QImage &upright, const QDateTime &utc,
                      double kmPerPixel, const QString &path) const;
    double frameKmPerPixel(const Job &job, const RoiSourceFrame &frame, int frameWidthPx) const;
    bool pictureDone();
    bool encode(const Job &job);
    FilmOrder orderFor(const Job &job) const;
    QString completionDetails(const Job &job) const;
    bool fail(const QString &text);

    RoiVideoPlan m_plan;
    RoiEncoder m_encoder;
    QString m_errorText;
    int m_createdVideos = 0;
    int m_writtenFrames = 0;
    bool m_canceled = false;
};
