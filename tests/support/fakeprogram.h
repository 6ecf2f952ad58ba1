#pragma once

#include <QMap>
#include <QMetaType>
#include <QStringList>
#include <QVector>

/**
 * A stand-in for curl or ffmpeg that notes how it was called and fails, crashes, hangs or
 * truncates as told: install it, name it in "paths/curl" or "paths/ffmpeg", and give it a script.
 *
 * It needs a name of its own: "bin/curl" and "bin/ffmpeg" are links to the real programs.
 */
namespace FakeProgram {

/// What one run does, in this order: prints, writes files, ends.
struct Reply
{
    int exitCode = 0;
    QByteArray standardOutput;
    QByteArray standardError;
    QMap<QString, QByteArray> files; ///< by path, or by "$last" or "$-o": the argument after "-o"
    bool hang = false;               ///< does not end until killed (gives up after two minutes)
    bool crash = false;              ///< ends by a signal
};

/// How one run was called.
struct Run
{
    QStringList arguments; ///< without the program's own name
    qint64 processId = 0;
};

/// Puts the program into the application folder, without script and journal; its absolute path.
QString install(const QString &path);

/// One reply for each run, counted from the installation; the last one repeats.
void setScript(const QString &program, const QVector<Reply> &replies);

/// Puts one in the place of "curl" or "ffmpeg", as far as sys/orvik.ini decides.
QString replace(const QString &name, const QVector<Reply> &replies);

/// All runs since the installation, in the order in which they began.
QVector<Run> runs(const QString &program);

} // namespace FakeProgram

Q_DECLARE_METATYPE(FakeProgram::Reply) // a column of a data table
