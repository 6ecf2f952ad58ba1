#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// An original frame that is on disk.
struct RoiSourceFrame
{
    QString file;         ///< absolute, cleaned
    QDateTime actualUtc;  ///< invalid when unknown
    QJsonObject metadata; ///< keys as in a closest-image answer; empty when unknown
};

/// A datasource of a stored session.
struct RoiSource
{
    int sourceId = -1;
    QString nickname;
    QString archiveName; ///< as session.json has it, which anyone may have edited
    QString folder;      ///< absolute
    QVector<RoiSourceFrame> frames;
};

/// A stored session, read back.
struct StoredSession
{
    QString directory; ///< absolute; empty when none is loaded
    QVector<RoiSource> sources;
    QDateTime startUtc; ///< invalid when the descriptor has none
    int videoFps = 25;
    int videoCrf = 18;
    bool sourceOverlay = true;
    bool scaleOverlay = true;
    QStringList remarks; ///< what of its files could not be read, for the log

    int sourcesWithFrames() const; ///< how many of them can be looked at and filmed
};

/// Stored sessions as they are found on disk, whoever wrote or edited them.
namespace RoiSession {

/**
 * Reads session.json and manifest.csv of @p directory and looks which frames are still there.
 *
 * Frames keep the order of the manifest. Without a row that helps, the folder's "frame_*.png" are
 * taken by name, with neither time nor metadata.
 *
 * @return nothing when the descriptor cannot be used; @p errorText, which may be null, then says
 *         why
 */
std::optional<StoredSession> load(const QString &directory, QString *errorText = nullptr);

/**
 * Whether films and temporary frames may be written, and removed, in the folder of @p source.
 *
 * The folder's name comes from a file that may have been handed over by somebody else. Only a
 * folder below the session qualifies, with links followed.
 *
 * @param errorText  may be null; a sentence for the user, set only when the folder is refused
 */
bool mayWriteTo(const RoiSource &source, const QString &sessionDirectory,
                QString *errorText = nullptr);

} // namespace RoiSession
