#pragma once

#include "output/filmencoder.h"

#include <QHash>
#include <QString>
#include <QVector>

#include <optional>

class QDateTime;
struct AcquisitionSettings;
struct DataSource;

/// Where a session keeps the files of one datasource.
struct SourceFolder
{
    QString name;      ///< also the base name of its film
    QString directory; ///< absolute; holds the originals
    QString videoFramesDirectory;
};

/// Where a session keeps everything.
struct SessionFolders
{
    QString directory;                ///< absolute
    QHash<int, SourceFolder> sources; ///< by sourceId
};

/// Names and places of a session's files.
namespace SessionLayout {

/**
 * Creates the directories of a session under @p outputRoot, and that one if it is missing.
 *
 * A datasource's folder that cannot be created is noticed when its first frame arrives.
 *
 * @return nothing when there can be no session; @p errorText, which may be null, then says why
 */
std::optional<SessionFolders> create(const QString &outputRoot, const AcquisitionSettings &settings,
                                     QString *errorText);

/**
 * Creates a session's own directory, named after its interval, under @p outputRoot.
 *
 * A name that is taken gets "_2", "_3" and so on. Creating the directory claims the name: of two
 * programs that start at the same moment only one succeeds, and the other tries the next name.
 *
 * @return absolute path, or nothing when no directory can be created there
 */
std::optional<QString> createSessionDirectory(const QString &outputRoot, const QDateTime &startUtc,
                                              const QDateTime &endUtc);

/**
 * The folders of a session's datasources by sourceId.
 *
 * Different datasources may carry the same nickname; the later one then gets "_" and its sourceId
 * appended, so that no two share a folder.
 */
QHash<int, SourceFolder> sourceFolders(const QString &sessionDirectory,
                                       const QVector<DataSource> &sources,
                                       const QDateTime &startUtc);

/// Frames as ffmpeg's image sequence reader takes them, relative to the datasource's folder.
QString framePattern();

/// The film of a datasource: inside its folder, of @p pictures annotated frames.
FilmOrder filmOrder(const SourceFolder &folder, int pictures, const AcquisitionSettings &settings);

} // namespace SessionLayout
