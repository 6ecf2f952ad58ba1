#pragma once

#include <QString>
#include <QTextStream>

/**
 * The output of the program: results on standard output, errors and progress on standard error.
 *
 * Names and texts come from files that anyone may have written, so their control characters are
 * never sent to the terminal. Progress is for people: it is shown only on a terminal.
 */
class ToolConsole final
{
public:
    ToolConsole();
    ~ToolConsole();

    /// A line of the result.
    void print(const QString &line);
    /// The same, shown at once: the next line may take a while.
    void printNow(const QString &line);
    /// Prints text of our own, which has its own line ends, unchanged.
    void printRaw(const QString &text);
    /// The same for text that is already encoded.
    void printBytes(const QByteArray &bytes);
    /// Prints why the command failed.
    void complain(const QString &sentence);
    /// Replaces the progress shown before; disappears with the next line.
    void setProgress(const QString &text);

    /// @p text with a question mark for each character that could steer a terminal.
    static QString printable(const QString &text);
    /// "1 finding", "2 findings".
    static QString counted(qint64 number, const char *noun);

private:
    void clearProgress();

    QTextStream m_out;
    QTextStream m_err;
    bool m_showsProgress;
    bool m_hasProgress = false;
};
