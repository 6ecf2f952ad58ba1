#pragma once

#include <QElapsedTimer>
#include <QJsonObject>
#include <QObject>
#include <QProcess>
#include <QTimer>

class AcquisitionController;

/**
 * Measures from outside what an acquisition spends its time on.
 *
 * The engine is not changed for it: the run is divided by the starts and ends of its curl children
 * and by the times at which it passes something to the window.
 */
class StageWatch final : public QObject
{
    Q_OBJECT

public:
    explicit StageWatch(AcquisitionController &controller);

    /// The time between these two calls counts for the window, not for the engine.
    void enterWindow();
    void leaveWindow();

    /// Milliseconds per frame by stage.
    QJsonObject stagesMs(int frames) const;
    /// The longest time for which the event loop was blocked.
    double largestStallMs() const;

private:
    enum Stage { Lookup, Judge, Download, Accept, Window, StageCount };

    void onProcessState(QProcess::ProcessState state);
    void onTick();
    void enter(Stage stage);

    QElapsedTimer m_clock;
    qint64 m_stageSince = 0; // nanoseconds of m_clock
    Stage m_stage = Accept;
    Stage m_beforeWindow = Accept;
    qint64 m_spent[StageCount] = {}; // nanoseconds

    QTimer m_tick;
    qint64 m_lastTick = 0;
    qint64 m_longestGap = 0;
};
