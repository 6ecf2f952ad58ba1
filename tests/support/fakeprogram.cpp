#include "tests/support/fakeprogram.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QString journalPath(const QString &program)
{
    return program + QLatin1String(".journal");
}

QString scriptPath(const QString &program)
{
    return program + QLatin1String(".script");
}

QString base64(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toBase64());
}

QJsonObject toJson(const FakeProgram::Reply &reply)
{
    QJsonObject files;
    for (auto file = reply.files.begin(); file != reply.files.end(); ++file)
        files.insert(file.key(), base64(file.value()));
    return {
        {QStringLiteral("exitCode"), reply.exitCode},
        {QStringLiteral("stdout"), base64(reply.standardOutput)},
        {QStringLiteral("stderr"), base64(reply.standardError)},
        {QStringLiteral("files"), files},
        {QStringLiteral("delayMs"), reply.delayMs},
        {QStringLiteral("hang"), reply.hang},
        {QStringLiteral("crash"), reply.crash},
    };
}

} // namespace

QString FakeProgram::install(const QString &path)
{
    QString program = QDir(QCoreApplication::applicationDirPath()).absoluteFilePath(path);
    QDir().mkpath(QFileInfo(program).path());
    for (const QString &old : {program, journalPath(program), scriptPath(program)})
        QFile::remove(old);
    if (!QFile::link(QStringLiteral(ORVIK_FAKEPROGRAM), program))
        qFatal("cannot put the stand-in program at %s", qPrintable(program));
    return program;
}

void FakeProgram::setScript(const QString &program, const QVector<Reply> &replies)
{
    QJsonArray entries;
    for (const Reply &reply : replies)
        entries.append(toJson(reply));
    QFile script(scriptPath(program));
    if (!script.open(QIODevice::WriteOnly) || script.write(QJsonDocument(entries).toJson()) < 0)
        qFatal("cannot write %s", qPrintable(script.fileName()));
}

QVector<FakeProgram::Run> FakeProgram::runs(const QString &program)
{
    QVector<Run> runs;
    QFile journal(journalPath(program));
    if (!journal.open(QIODevice::ReadOnly))
        return runs; // not started yet
    while (!journal.atEnd()) {
        const QJsonObject line = QJsonDocument::fromJson(journal.readLine()).object();
        runs.append({line.value(QLatin1String("arguments")).toVariant().toStringList(),
                     line.value(QLatin1String("workingDirectory")).toString(),
                     line.value(QLatin1String("processId")).toVariant().toLongLong()});
    }
    return runs;
}

QVector<QStringList> FakeProgram::argumentLists(const QString &program)
{
    QVector<QStringList> lists;
    const QVector<Run> all = runs(program);
    for (const Run &run : all)
        lists.append(run.arguments);
    return lists;
}

void FakeProgram::clearJournal(const QString &program)
{
    QFile::remove(journalPath(program));
}
