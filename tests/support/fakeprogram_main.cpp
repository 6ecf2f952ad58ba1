/*
 * Stands in for curl or ffmpeg where a child process must fail, crash or hang on purpose.
 *
 * It notes its arguments in "<own path>.journal" and then does what "<own path>.script" says; see
 * fakeprogram.h for both. The own path is the one it was started by, so that one program linked
 * under several names plays several parts.
 */
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

namespace {

// Long enough for any test, short enough that a forgotten child does not stay for ever.
constexpr std::chrono::seconds hangLimit(120);
constexpr int brokenScriptExitCode = 99;

/// Appends this run to the journal; returns how many runs came before it, or -1.
int enterJournal(const QString &path, const QStringList &arguments)
{
    QFile journal(path);
    if (!journal.open(QIODevice::ReadWrite) || flock(journal.handle(), LOCK_EX) != 0)
        return -1;
    const int earlierRuns = journal.readAll().count('\n');
    const QJsonObject run{
        {QStringLiteral("arguments"), QJsonArray::fromStringList(arguments)},
        {QStringLiteral("workingDirectory"), QDir::currentPath()},
        {QStringLiteral("processId"), static_cast<qint64>(getpid())},
    };
    journal.write(QJsonDocument(run).toJson(QJsonDocument::Compact) + '\n');
    return earlierRuns;
}

/// The entry for this run; the last one repeats, and without a script the program just succeeds.
QJsonObject replyFor(int run, const QString &scriptPath)
{
    QFile script(scriptPath);
    if (!script.open(QIODevice::ReadOnly))
        return {};
    const QJsonArray replies = QJsonDocument::fromJson(script.readAll()).array();
    if (replies.isEmpty())
        return {{QStringLiteral("exitCode"), brokenScriptExitCode}};
    return replies.at(qMin(run, replies.size() - 1)).toObject();
}

QByteArray bytes(const QJsonValue &base64)
{
    return QByteArray::fromBase64(base64.toString().toLatin1());
}

void print(std::FILE *stream, const QByteArray &text)
{
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stream);
    std::fflush(stream);
}

/// "$last" is the last argument, "$-o" the one after "-o"; anything else is a path.
QString targetPath(const QString &target, const QStringList &arguments)
{
    if (target == QLatin1String("$last"))
        return arguments.value(arguments.size() - 1);
    if (!target.startsWith(QLatin1Char('$')))
        return target;
    const int option = arguments.indexOf(target.mid(1));
    return option < 0 ? QString() : arguments.value(option + 1);
}

void writeFiles(const QJsonObject &files, const QStringList &arguments)
{
    for (auto file = files.begin(); file != files.end(); ++file) {
        QFile target(targetPath(file.key(), arguments));
        if (target.open(QIODevice::WriteOnly))
            target.write(bytes(file.value()));
    }
}

} // namespace

int main(int argc, char *argv[])
{
    const QString ownPath = QFile::decodeName(argv[0]);
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));

    const int run = enterJournal(ownPath + QLatin1String(".journal"), arguments);
    if (run < 0)
        return brokenScriptExitCode;
    const QJsonObject reply = replyFor(run, ownPath + QLatin1String(".script"));

    print(stdout, bytes(reply.value(QLatin1String("stdout"))));
    print(stderr, bytes(reply.value(QLatin1String("stderr"))));
    writeFiles(reply.value(QLatin1String("files")).toObject(), arguments);

    const int delayMs = reply.value(QLatin1String("delayMs")).toInt();
    std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
    if (reply.value(QLatin1String("hang")).toBool())
        std::this_thread::sleep_for(hangLimit);
    if (reply.value(QLatin1String("crash")).toBool())
        std::raise(SIGKILL); // as a crash to the parent, without a core file
    return reply.value(QLatin1String("exitCode")).toInt();
}
