#pragma once

#include <QObject>

class QDockWidget;
class QTextEdit;

/**
 * The log: shows every line with its time, in the colour of its class, and counts errors and
 * warnings.
 *
 * Appending takes the same time however many lines there are.
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
