#pragma once

#include <QString>
#include <QTextStream>

/**
 * The log and, below it, one line of progress.
 *
 * Colours and the progress line are for people: a file or a pipe gets only the plain log lines.
 */
class Terminal final
{
public:
    Terminal();

    /// A line of the session's log, coloured by its class.
    void logLine(const QString &text);
    /// A line that is not part of the log.
    void print(const QString &text);

    void setState(const QString &text);
    void setProgress(int value, int maximum);
    /// Removes the progress line.
    void endProgress();

private:
    void printAboveProgress(const QString &text);
    void drawProgress();

    QTextStream m_out;
    bool m_isTerminal;
    bool m_hasColours;
    bool m_showsProgress = false;
    QString m_state;
    int m_value = 0;
    int m_maximum = 1;
};
