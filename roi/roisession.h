#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// An original frame that exists on disk.
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
    QString archiveName; ///< as in session.json, which may have been edited by anyone
    QString folder;      ///< absolute
    QVector<RoiSourceFrame> frames;
};

/// A stored session as read from disk.
struct StoredSession
{
    QString directory; ///< absolute; empty when none is loaded
    QVector<RoiSource> sources;
    QDateTime startUtc; ///< invalid when the descriptor has none
    int videoFps = 25;
    int videoCrf = 18;
    bool sourceOverlay = true;
    bool scaleOverlay = true;
    QStringList remarks; ///< lines for the log about files that could not be read in full

    int sourcesWithFrames() const; ///< how many of them can be looked at and filmed
    int firstWithFrames() const;   ///< the first of these; 0 when there is none
};

/// Reads stored sessions, which may have been written or edited by anyone.
namespace RoiSession {

/**
 * Reads session.json and manifest.csv of @p directory and checks which frames still exist.
 *
 * Frames keep the order of the manifest. If the manifest lists no existing frame of a datasource,
 * the "frame_*.png" of its folder are taken, in order of name, without time and metadata.
 *
 * @return nothing when the descriptor cannot be used; @p errorText, which may be null, then says
 *         why
 */
std::optional<StoredSession> load(const QString &directory, QString *errorText = nullptr);

/**
 * Whether films and temporary frames may be written, and removed, in the folder of @p source.
 *
 * The folder's name comes from session.json, which may come from somebody else. Only folders below
 * the session are allowed, with links followed.
 *
 * @param errorText  may be null; a sentence for the user, set only when the folder is refused
 */
bool mayWriteTo(const RoiSource &source, const QString &sessionDirectory,
                QString *errorText = nullptr);

} // namespace RoiSession
