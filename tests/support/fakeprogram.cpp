#include "tests/support/fakeprogram.h"

#include "tests/support/literals.h"
#include "tests/support/testfolder.h"

#include <QFile>
#include <QVariant>

namespace {

constexpr QChar unitSeparator(0x1f); // in no argument of ours

/// A line of the journal for each run, written whole before any other run may write one; then the
/// replies, when there are any.
constexpr char commonCommands[] = R"(exec 9>>"$0.journal"
flock 9
run=$(wc -l <"$0.journal")
IFS=$'\x1f'
echo "$$"$'\x1f'"$*" >&9
exec 9>&-
for ((i = 1; i <= $#; ++i)); do
    [[ "$out" != -o ]] || out="${!i}"
    [[ "${!i}" != -o ]] || out=-o
done
[[ ! -e "$0.replies" ]] || . "$0.replies" "$@")";

QByteArray print(const QByteArray &bytes, const QByteArray &target)
{
    return "base64 -d <<<'" + bytes.toBase64() + "' >" + target + '\n';
}

QByteArray commands(const FakeProgram::Reply &reply)
{
    QByteArray lines = print(reply.standardOutput, "&1") + print(reply.standardError, "&2");
    for (auto file = reply.files.begin(); file != reply.files.end(); ++file) {
        QString target = file.key();
        target.replace("$-o"_s, "$out"_s);
        target.replace("$last"_s, "${!#}"_s);
        lines += print(file.value(), '"' + target.toUtf8() + '"');
    }
    if (reply.hang)
        return lines + "exec sleep 120\n";
    return lines + (reply.crash ? "kill -KILL $$" : "exit " + QByteArray::number(reply.exitCode)) +
           '\n';
}

} // namespace

QString FakeProgram::install(const QString &path)
{
    const QString absolutePath = TestFolder::path(path);
    for (const char *suffix : {".journal", ".replies"})
        QFile::remove(absolutePath + QLatin1String(suffix));
    return TestFolder::writeScript(path, commonCommands);
}

void FakeProgram::setScript(const QString &program, const QVector<Reply> &replies)
{
    QFile script(program + QLatin1String(".replies"));
    if (!script.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(script.fileName()));
    for (int i = 0; i < replies.size(); ++i) {
        const QByteArray all = commands(replies.at(i));
        script.write(i + 1 < replies.size()
                         ? "if ((run == " + QByteArray::number(i) + ")); then\n" + all + "fi\n"
                         : all);
    }
}

QString FakeProgram::replace(const QString &name, const QVector<Reply> &replies)
{
    const QString program = install("bin/fake-"_s + name);
    setScript(program, replies);
    TestFolder::setKey("paths/"_s + name, program);
    return program;
}

QVector<FakeProgram::Run> FakeProgram::runs(const QString &program)
{
    QVector<Run> runs;
    QFile journal(program + QLatin1String(".journal"));
    if (!journal.open(QIODevice::ReadOnly))
        return runs; // not started yet
    while (!journal.atEnd()) {
        QStringList fields =
            QString::fromLocal8Bit(journal.readLine()).chopped(1).split(unitSeparator);
        const qint64 processId = fields.takeFirst().toLongLong();
        runs.append({fields, processId});
    }
    return runs;
}
