#pragma once

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QTimer>

/// What is asked of one ffmpeg run.
struct FilmOrder
{
    QString program;      ///< ffmpeg
    QString folder;       ///< the working directory, which the pattern is relative to
    QString inputPattern; ///< as ffmpeg's image sequence reader takes it
    QString film;         ///< absolute path of the MP4, which may exist
    int fps = 25;
    int crf = 18;
    int pictures = 0;     ///< how many there are, and the film has to show
    int startLimitMs = 0; ///< how long the program may take to start; 0 for no limit
};

/// How an ffmpeg run ended.
struct FilmOutcome
{
    enum class End {
        Completed,  ///< the film is whole
        NotStarted, ///< the program could not be started
        Failed,     ///< it ended with an error, crashed or was killed
        NotWhole,   ///< it ended without an error, but its film is not whole
    };

    End end = End::Completed;
    int exitCode = 0;
    QString reason; ///< the system's words, or what is wrong with the film; empty when completed
};

/**
 * Turns numbered pictures into a film by one ffmpeg run at a time.
 *
 * After a run that failed no MP4 is left that is empty or cut off: no player could show it.
 * Destruction kills a run without a word.
 */
class FilmEncoder final : public QObject
{
    Q_OBJECT

public:
    explicit FilmEncoder(QObject *parent = nullptr);
    ~FilmEncoder() override;

    bool isRunning() const { return m_process; }
    /// The last @p maxCharacters of what the run has written, up to 64 KB, trimmed.
    QString lastOutput(int maxCharacters) const;

    /// Starts a run; one that is under way is canceled first.
    void start(const FilmOrder &order);

public slots:
    /// Kills the run, which then ends as failed before this returns, after a second at the latest.
    void cancel();

signals:
    /// ffmpeg has written @p text, trimmed and not empty.
    void outputRead(const QString &text);
    /// The run has ended: the last signal of each, also when it is sent by start() or cancel().
    void finished(const FilmOutcome &outcome);

private:
    void onProcessFinished(int exitCode, QProcess::ExitStatus exitStatus);
    void onProcessError(QProcess::ProcessError error);
    void onReadyRead();
    void onStartLimit();
    void conclude(const FilmOutcome &outcome);

    FilmOrder m_order;
    QProcess *m_process = nullptr; // owned as a child; exists only during a run
    QByteArray m_output;           // the end of it
    QTimer m_startLimit;
};
