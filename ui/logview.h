#pragma once

#include <QObject>

class QDockWidget;
class QTextEdit;

/**
 * The log: every line with its time, coloured by its class, errors and warnings counted.
 *
 * The cost of a line does not depend on how many there are already.
 */
class LogView final : public QObject
{
    Q_OBJECT

public:
    /// @p dock shows the counters in its title from the first line on.
    LogView(QTextEdit *log, QDockWidget *dock, QObject *parent = nullptr);

    void append(const QString &text);
    /// Empties the log and starts counting anew.
    void clear();

private:
    void refreshTitle();

    QTextEdit *m_log;    // not owned; belongs to the window's form
    QDockWidget *m_dock; // not owned; belongs to the window's form
    int m_errors = 0;
    int m_warnings = 0;
};
