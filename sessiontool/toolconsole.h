#pragma once

#include <QString>
#include <QTextStream>

/**
 * What the program says: results on standard output, complaints and progress on standard error.
 *
 * Names and texts come from files that anyone may have written, so no control character of theirs
 * reaches the terminal. Progress is for people: it is shown only on a terminal.
 */
class ToolConsole final
{
public:
    ToolConsole();
    ~ToolConsole();

    /// A line of the result.
    void print(const QString &line);
    /// The same, where the next line may be long in coming.
    void printNow(const QString &line);
    /// Text of our own making that has lines already, as it is.
    void printRaw(const QString &text);
    /// The same, in an encoding of its own.
    void printBytes(const QByteArray &bytes);
    /// Why nothing came of it.
    void complain(const QString &sentence);
    /// Shown in place of the progress before, until the next line.
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
