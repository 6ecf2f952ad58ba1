#pragma once

#include <QByteArray>
#include <QImage>
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QTemporaryDir>

/**
 * A stored session of two datasources, "AIA 171" (id 10, three frames of 256 x 192) and "HMI" (id
 * 18, the same three at half the size), as an acquisition leaves it behind.
 *
 * The frames show four fields of one colour each: red, green above blue, white. Minute k of the
 * session makes frame k.
 */
class TestSession
{
public:
    TestSession();

    QString path() const { return m_folder.path(); }
    QString filePath(const QString &name) const { return m_folder.filePath(name); }
    void write(const QString &name, const QByteArray &content) const;
    QByteArray read(const QString &name) const;
    /// Rewrites session.json with some of its members replaced.
    void changeDescriptor(const QJsonObject &members) const;
    /// Rewrites the archiveName of the first datasource.
    void renameFirstFolder(const QString &archiveName) const;

    /// Checksums of all files but films and rois.json, by relative path; hidden files included.
    QMap<QString, QByteArray> checksums() const;

    static QImage frame(const QSize &size);

private:
    void addSource(int sourceId, const QString &nickname, const QSize &size);

    QTemporaryDir m_folder;
    QByteArray m_manifest;
    QJsonObject m_descriptor;
};
