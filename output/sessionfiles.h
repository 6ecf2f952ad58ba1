#pragma once

#include <QString>

/// Names of the files and folders that every session has.
namespace SessionFiles {

inline QString manifest()
{
    return QStringLiteral("manifest.csv");
}

inline QString descriptor()
{
    return QStringLiteral("session.json");
}

/// The folder of annotated copies inside a datasource's folder.
inline QString videoFramesFolder()
{
    return QStringLiteral("video_frames");
}

} // namespace SessionFiles
