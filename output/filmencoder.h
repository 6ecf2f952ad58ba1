#pragma once

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QTimer>

/// Everything one ffmpeg run needs to know.
struct FilmOrder
{
    QString program;      ///< ffmpeg
    QString folder;       ///< the working directory, which the pattern is relative to
    QString inputPattern; ///< as ffmpeg's image sequence reader takes it
    QString film;         ///< absolute path of the MP4, which may exist
    int fps = 25;
    int crf = 18;
    int pictures = 0;     ///< number of pictures, all of which the film must show
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
    QString reason; ///< system error text or what is wrong with the film; else empty
};

/**
 * Makes films from numbered pictures, by one ffmpeg run at a time.
 *
 * A failed run leaves no MP4 behind that is empty or cut off: no player could show it. The
 * destructor kills a run without sending a signal.
 */
class FilmEncoder final : public QObject
{
    Q_OBJECT

public:
    explicit FilmEncoder(QObject *parent = nullptr);
    ~FilmEncoder() override;

    bool isRunning() const { return m_process; }
    const FilmOutcome &outcome() const { return m_outcome; } ///< of the last run that has ended
    /// The last @p maxCharacters, of 64 KB at most, that ffmpeg has written; trimmed.
    QString lastOutput(int maxCharacters) const;

    /// Starts a run; cancels one that is still going on.
    void start(const FilmOrder &order);

public slots:
    /// Kills the run and sends finished(), at the latest after a second, before it returns.
    void cancel();

signals:
    /// ffmpeg has written @p text, trimmed and not empty.
    void outputRead(const QString &text);
    /// A run has ended; sent exactly once per start(), as its last signal.
    void finished(const FilmOutcome &outcome);

private:
    void onProcessFinished(int exitCode, QProcess::ExitStatus exitStatus);
    void onProcessError(QProcess::ProcessError error);
    void onReadyRead();
    void onStartLimit();
    void conclude(const FilmOutcome &outcome);

    FilmOrder m_order;
    FilmOutcome m_outcome;
    QProcess *m_process = nullptr; // owned as a child; exists only during a run
    QByteArray m_output;           // the last 64 to 128 KB
    QTimer m_startLimit;
};
