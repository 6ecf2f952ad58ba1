#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

class QVariant;

/// The application folder that each test program has for itself.
namespace TestFolder {

/// Absolute path of @p relativePath in the application folder.
QString path(const QString &relativePath);

/// Writes a key of the test's own sys/orvik.ini; it holds until cleared, also for a later run.
void setKey(const QString &key, const QVariant &value);
/// Removes sys/orvik.ini, so that every key reads as its default; call it in init().
void clearKeys();

/// Writes @p commands as an executable shell script into the application folder; its path.
QString writeScript(const QString &name, const QByteArray &commands);

/// Lets no file of this process and its children grow beyond @p bytes, as a full disk does; without
/// a number they may grow again.
void leaveRoom(qint64 bytes = -1);

/// An empty output root of its own, entered as "paths/output"; removed with this object.
class OutputRoot final
{
public:
    OutputRoot();

    QString path() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};

} // namespace TestFolder
