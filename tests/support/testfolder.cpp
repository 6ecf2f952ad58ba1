#include "tests/support/testfolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSettings>
#include <QVariant>

namespace {

QString iniPath()
{
    return TestFolder::path(QStringLiteral("sys/orvik.ini"));
}

} // namespace

QString TestFolder::path(const QString &relativePath)
{
    return QDir(QCoreApplication::applicationDirPath()).absoluteFilePath(relativePath);
}

void TestFolder::setKey(const QString &key, const QVariant &value)
{
    QDir().mkpath(path(QStringLiteral("sys")));
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

TestFolder::OutputRoot::OutputRoot()
{
    if (!m_folder.isValid())
        qFatal("cannot make a temporary folder: %s", qPrintable(m_folder.errorString()));
    setKey(QStringLiteral("paths/output"), m_folder.path());
}
