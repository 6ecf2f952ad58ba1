#pragma once

#include "tests/support/fakeprogram.h"

#include <QImage>
#include <QTemporaryDir>

/**
 * A stored session of two datasources, "AIA 171" (id 10, three frames of 256 x 192) and "HMI" (id
 * 18, the same at half the size), as an acquisition leaves it behind.
 *
 * A frame has four fields: red, green above blue, white. Minute k of the session makes frame k.
 */
class TestSession final
{
public:
    TestSession();

    QString path() const { return m_folder.path(); }
    QString filePath(const QByteArray &name) const
    {
        return m_folder.filePath(QString::fromUtf8(name));
    }
    void write(const QByteArray &name, const QByteArray &content) const;
    QByteArray read(const QByteArray &name) const;
    /// All files but films and rois.json, by path; hidden files included.
    QMap<QString, QByteArray> contents() const;

    static QImage frame(const QSize &size);

private:
    QTemporaryDir m_folder;
};

/// Lets a stand-in play "curl" or "ffmpeg"; returns its path.
QString useStandIn(const QString &program, const FakeProgram::Reply &reply);

/// Width, height, frames per second and number of frames, as in "96,128,5/1,3"; empty for no film.
QString filmShape(const QString &path);
/// Frame @p index of a film; its pixels have their pure colours again, whatever the encoder did.
QImage filmFrame(const QString &path, int index);
