#pragma once

#include <QString>
#include <QTemporaryDir>
#include <QVector>

/**
 * A folder outside of the session in which video_frames has the frames of a film and no others.
 *
 * ffmpeg takes what is numbered from 0 on. A run that was killed may have left a frame that is not
 * in its manifest, and a manifest may have lost rows. The frames in here are links: those of the
 * session are not touched.
 */
class LinkedFrames final
{
public:
    /// Whether ffmpeg would not take just the frames of these @p numbers from @p videoFrames.
    static bool areNeeded(const QString &videoFrames, const QVector<int> &numbers);

    /// Links these frames, numbered from 0 on; false with the reason in @p errorText.
    bool create(const QString &videoFrames, const QVector<int> &numbers, QString *errorText);

    /// What holds the folder video_frames; removed with this object.
    QString path() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};
