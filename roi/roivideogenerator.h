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

    const QVector<MadeFilm> &films() const { return m_films; } ///< of the run, in their order
    int createdVideos() const { return m_films.size(); }
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
    bool handleEvents();
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
