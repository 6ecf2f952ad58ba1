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

/// "frame_000000.png"; the same number names an original and its annotated copy.
inline QString frame(int number)
{
    return QStringLiteral("frame_%1.png").arg(number, 6, 10, QLatin1Char('0'));
}

/// The number in the name of a frame; -1 for any other name.
inline int frameNumber(const QString &name)
{
    constexpr int prefix = 6; // "frame_"
    constexpr int suffix = 4; // ".png"
    bool isNumber = false;
    const int number = name.midRef(prefix, name.size() - prefix - suffix).toInt(&isNumber);
    return isNumber && number >= 0 && frame(number) == name ? number : -1;
}

/// All frames of a folder, as a name filter.
inline QString frameFilter()
{
    return QStringLiteral("frame_*.png");
}

/// All frames of a folder, as ffmpeg's image sequence reader takes them.
inline QString framePattern()
{
    return QStringLiteral("frame_%06d.png");
}

/// The film in a datasource's folder, which has the name of that folder.
inline QString film(const QString &folderName)
{
    return folderName + QStringLiteral(".mp4");
}

} // namespace SessionFiles
