#pragma once

#include <QString>
#include <QTemporaryDir>
#include <QVector>

/**
 * A folder outside the session whose video_frames has the frames of a film and no others.
 *
 * ffmpeg encodes all frames that are numbered from 0 on. A killed run may have left a frame that is
 * not in its manifest, and a manifest may have lost rows. The frames in this folder are links:
 * those of the session are not touched.
 */
class LinkedFrames final
{
public:
    /// Whether ffmpeg, run on @p videoFrames, would encode other frames than these @p numbers.
    static bool areNeeded(const QString &videoFrames, const QVector<int> &numbers);

    /// Links these frames, numbered from 0 on; false with the reason in @p errorText.
    bool create(const QString &videoFrames, const QVector<int> &numbers, QString *errorText);

    /// The folder that contains video_frames; removed with this object.
    QString path() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};
