#pragma once

#include "roi/roiencoder.h"
#include "sessiontool/exitcode.h"
#include "sessiontool/sessionledger.h"
#include "sessiontool/storeddescriptor.h"

#include <QDir>

class ToolConsole;

/// How the films of a session are to be made.
struct FilmWishes
{
    int fps = 25;
    int crf = 18;
    bool replaceBroken = false; ///< films that are cut off or lack pictures are made anew
};

/**
 * Makes the films that a stored session lacks, one after the other, and says what becomes of each.
 *
 * A film that fails or is interrupted leaves no file, and the one that it was to replace is
 * restored.
 */
class SessionFilms final : public QObject
{
    Q_OBJECT

public:
    SessionFilms(const QDir &session, const SessionLedger &ledger, const FilmWishes &wishes,
                 ToolConsole &console);

    /// Goes through all datasources, unless it is interrupted.
    ExitCode make(const QVector<DescribedSource> &sources);

    /// The signal that has interrupted it; 0 when none has.
    int interruption() const { return m_interruption; }

public slots:
    /// Kills the film that is being made, and makes no further one.
    void interrupt(int signalNumber);

private:
    void makeFilm(const DescribedSource &source);
    bool mayWriteTo(const DescribedSource &source, QString *errorText) const;
    void encode(const DescribedSource &source, const QString &film, const QVector<int> &numbers);
    void run(const DescribedSource &source, const FilmOrder &order);
    void fail(const DescribedSource &source, const QString &reason);
    void showProgress(const QString &output);

    QDir m_session;
    SessionLedger m_ledger;
    FilmWishes m_wishes;
    ToolConsole &m_console;
    RoiEncoder m_encoder;
    QString m_nickname; // of the film being made
    int m_frames = 0;   // that it will show
    ExitCode m_exitCode = ExitCode::Fine;
    int m_interruption = 0;
};
