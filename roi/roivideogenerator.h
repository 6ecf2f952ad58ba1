#pragma once

#include "roi/roiencoder.h"
#include "roi/roiframe.h"
#include "roi/roijob.h"

#include <QObject>

#include <optional>
#include <vector>

class QImage;

/// A film that a run has made.
struct MadeFilm
{
    QString nickname; ///< of the datasource
    QString region;
    QString file;
    int pictures = 0;
    int fps = 25;
};

/**
 * Makes one film per region and datasource from the stored frames, which it only reads.
 *
 * Pictures go one by one into a folder of their own below the datasource's, from where ffmpeg
 * takes them; that folder is gone when the film is made, whatever the end. A frame that several
 * regions are cut from is decoded once, as long as the disk has room for all their pictures.
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
     * @return lines for the log, one for each film that is back
     */
    static QStringList restoreEarlierFilms(const StoredSession &session);

    const QVector<MadeFilm> &films() const { return m_films; } ///< of the run, in their order
    int createdVideos() const { return m_films.size(); }
    QString errorText() const { return m_errorText; } ///< empty unless the run failed

    /// Works through the whole plan; pending events are processed after each decoded frame and
    /// each written picture.
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
    using Jobs = std::vector<RoiJob>;

    bool filmSources();
    bool filmSource(const RoiFilmSource &filmed);
    bool filmRoi(Jobs &jobs, size_t current);
    bool writeIntro(const RoiJob &job);
    bool decodeForIntro(const RoiSourceFrame &frame);
    bool writeSequence(Jobs &jobs, size_t current);
    bool writeFrame(Jobs &jobs, size_t current, int index);
    bool writeAhead(Jobs &jobs, size_t current, const QImage &decoded, int index);
    bool pictureDone();
    bool letOthersIn();
    bool encode(const RoiJob &job);
    QString completionDetails(const RoiJob &job) const;
    bool removeTemporary(const QString &path);
    bool fail(const QString &text);

    RoiVideoPlan m_plan;
    RoiEncoder m_encoder;
    std::optional<ZoomSource> m_zoom; // the first frame of the datasource, once it is needed
    QString m_errorText;
    QVector<MadeFilm> m_films;
    int m_writtenFrames = 0;
    bool m_canceled = false;
};
