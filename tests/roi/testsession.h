#pragma once

#include <QByteArray>
#include <QImage>
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
    /// Replaces text in session.json.
    void editDescriptor(const QByteArray &before, const QByteArray &after) const;
    /// All files but films and rois.json, by relative path; hidden files included.
    QMap<QString, QByteArray> contents() const;

    static QImage frame(const QSize &size);

private:
    QByteArray addFrames(const QByteArray &source, const QString &folder, const QSize &size) const;

    QTemporaryDir m_folder;
};

/// Width, height, frames per second and number of frames, as in "96,128,5/1,3"; empty for no film.
QString filmShape(const QString &path);

/// Frame @p index of a film, decoded; null when there is none.
QImage filmFrame(const QString &path, int index);
