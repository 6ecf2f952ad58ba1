#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QString>
#include <QVector>

#include <optional>

class QDir;

/// A datasource as described in session.json, which anyone may have edited.
struct DescribedSource
{
    int sourceId = -1;
    QString nickname;
    QString archiveName; ///< its folder; see isFolderName()
    QJsonObject record;  ///< its whole object
};

/// What session.json says about a session.
struct StoredDescriptor
{
    QDateTime startUtc; ///< invalid when it is missing
    QDateTime endUtc;
    int videoFps = 25;
    int videoCrf = 18;
    bool keepFrames = true;
    bool createVideos = true;
    bool canceled = false;
    bool recovered = false; ///< written from the manifest
    QVector<DescribedSource> sources;
};

namespace StoredDescriptors {

/// Whether anything has the name of @p session's descriptor, even a dangling link.
bool isThere(const QDir &session);

/**
 * Reads the descriptor of @p session.
 *
 * @return nothing when there is none or it cannot be used; @p errorText, which may be null, then
 *         says why, as a sentence
 */
std::optional<StoredDescriptor> load(const QDir &session, QString *errorText = nullptr);

/// Whether @p archiveName names a folder directly inside the session.
bool isFolderName(const QString &archiveName);

} // namespace StoredDescriptors
