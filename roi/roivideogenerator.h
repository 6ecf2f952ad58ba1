#pragma once

#include "roi/roiencoder.h"
#include "roi/roisession.h"
#include "roi/roiset.h"

#include <QObject>

class QImage;

/// A region to film, with its place in the list, which its films are numbered by.
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

/// All that is asked of one generation run.
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
 * Makes one film per region and datasource from the stored frames, which it only reads.
 *
 * Pictures go one by one into a folder of their own below the datasource's, from where ffmpeg
 * takes them; that folder is gone when a datasource is done, whatever the end.
 */
class RoiVideoGenerator final : public QObject
{
    Q_OBJECT

public:
    enum class Outcome { Completed, Canceled, Failed };

    using QObject::QObject;

    /**
     * Puts back the earlier films of @p session that a killed program has left aside.
     *
     * Nothing happens while another window is making films there.
     *
     * @return the paths of the films that are back
     */
    static QStringList restoreEarlierFilms(const StoredSession &session);

    int createdVideos() const { return m_createdVideos; }
    QString errorText() const { return m_errorText; } ///< empty unless the run failed

    /// Works through the whole plan; pending events are processed after each picture.
    Outcome run(const RoiVideoPlan &plan);

public slots:
    /// Makes run() end within one picture; an encoder at work is killed, which takes up to a
    /// second.
    void cancel();

signals:
    /// A line for the log.
    void logMessage(const QString &text);
    /// What is being done now, for the user; before each picture and each encoding.
    void labelChanged(const QString &text);
    /// Another picture is written; @p frames counts them over the whole run.
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
