#pragma once

#include <QByteArray>
#include <QImage>
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QTemporaryDir>

/// u"text"_s, short for QStringLiteral("text").
inline QString operator""_s(const char16_t *text, size_t size)
{
    return QString::fromUtf16(text, static_cast<int>(size));
}

/**
 * A stored session of two datasources, "AIA 171" (id 10, three frames of 256 x 192) and "HMI" (id
 * 18, the same at half the size), as an acquisition leaves it behind.
 *
 * A frame has four fields: red, green above blue, white. Minute k of the session makes frame k.
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

/// A finished film, as ffprobe and ffmpeg see it.
struct Film
{
    int frames = 0;
    QSize size;
    QString rate; ///< "5/1"

    /// An empty record when @p path is no film.
    static Film probe(const QString &path);
    /// Frame @p index, decoded; null when there is none.
    static QImage frame(const QString &path, int index);
};
