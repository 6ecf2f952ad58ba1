#pragma once

#include "ui/runprogress.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class QStatusBar;

/**
 * What the status bar says: "Ready", or how far a run has come.
 *
 * A menu or a passing message hides that only for a while.
 */
class StatusLine final : public QObject
{
    Q_OBJECT

public:
    explicit StatusLine(QStatusBar *bar, QObject *parent = nullptr);

    /// Counts anew for a run that ends with @p films; shows nothing of it before begin().
    void reset(int films);
    /// Shows from now on, once a second, how far the run has come.
    void begin();
    /// Takes over a progress signal of the engine, which counts from 0 for the second time when
    /// its plan is ready.
    void count(int value, int maximum);
    /// The run is over.
    void end();
    /// Says something in passing.
    void announce(const QString &text);

private:
    void show(const QString &text);

    QStatusBar *m_bar; // not owned
    QString m_text;    // shown unless something else hides it
    QTimer m_tick;
    QElapsedTimer m_sincePlan;
    RunProgress::Count m_count;
    int m_beginnings = 0; // counts from 0 that were seen
};
