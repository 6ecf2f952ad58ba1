#pragma once

#include "ui/runprogress.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class QStatusBar;

/**
 * What the status bar says: "Ready", or how far a run has come.
 *
 * A menu or a temporary message hides it only for a while.
 */
class StatusLine final : public QObject
{
    Q_OBJECT

public:
    explicit StatusLine(QStatusBar *bar, QObject *parent = nullptr);

    /// Resets the counts for a run with that number of @p films; shows nothing until begin().
    void reset(int films);
    /// Shows from now on, once a second, how far the run has come.
    void begin();
    /// Takes a progress signal of the engine, which starts again at 0 when its plan is ready.
    void count(int value, int maximum);
    /// The run is over.
    void end();
    /// Shows a temporary message.
    void announce(const QString &text);

private:
    void show(const QString &text);

    QStatusBar *m_bar; // not owned
    QString m_text;    // shown unless something else hides it
    QTimer m_tick;
    QElapsedTimer m_sincePlan;
    RunProgress::Count m_count;
    int m_beginnings = 0; // how often the engine has started at 0
};
