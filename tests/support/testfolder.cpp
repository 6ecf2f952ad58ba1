#include "tests/support/testfolder.h"
#include "tests/support/literals.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSettings>
#include <QVariant>

#include <csignal>

#include <sys/resource.h>

namespace {

QString iniPath()
{
    return TestFolder::path("sys/orvik.ini"_s);
}

} // namespace

QString TestFolder::path(const QString &relativePath)
{
    return QDir(QCoreApplication::applicationDirPath()).absoluteFilePath(relativePath);
}

void TestFolder::setKey(const QString &key, const QVariant &value)
{
    QDir().mkpath(path("sys"_s));
    QSettings file(iniPath(), QSettings::IniFormat);
    file.setIniCodec("UTF-8");
    file.setValue(key, value);
    file.sync();
    if (file.status() != QSettings::NoError)
        qFatal("cannot write %s", qPrintable(iniPath()));
}

void TestFolder::clearKeys()
{
    QFile::remove(iniPath());
}

QString TestFolder::writeScript(const QString &name, const QByteArray &commands)
{
    QFile script(path(name));
    if (!script.open(QIODevice::WriteOnly) ||
        script.write("#!/bin/bash\n" + commands + '\n') < commands.size() ||
        !script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
        qFatal("cannot write %s", qPrintable(script.fileName()));
    return script.fileName();
}

void TestFolder::leaveRoom(qint64 bytes)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes < 0 ? limit.rlim_max : static_cast<rlim_t>(bytes);
    setrlimit(RLIMIT_FSIZE, &limit);
}

TestFolder::OutputRoot::OutputRoot()
{
    if (!m_folder.isValid())
        qFatal("cannot make a temporary folder: %s", qPrintable(m_folder.errorString()));
    setKey("paths/output"_s, m_folder.path());
}
