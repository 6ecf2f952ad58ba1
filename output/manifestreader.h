#pragma once

#include <QDateTime>
#include <QHash>
#include <QJsonObject>
#include <QString>
#include <QVector>

#include <optional>

/// An accepted frame as listed in the manifest.
struct ManifestFrame
{
    QString file;         ///< as written: relative to the session directory
    QDateTime actualUtc;  ///< invalid when unknown
    QJsonObject metadata; ///< keys as in a closest-image answer
};
Q_DECLARE_TYPEINFO(ManifestFrame, Q_MOVABLE_TYPE);

/// The contents of a manifest.
struct ManifestFrames
{
    QHash<int, QVector<ManifestFrame>> bySource; ///< of each sourceId, in file order
    QString remark; ///< a sentence if only part of the file was read; else empty
};

namespace ManifestReader {

/**
 * The accepted frames of each datasource.
 *
 * Columns are found by their names; a column that is missing reads as empty, and so does a field
 * that a damaged line lacks. The metadata holds those of "scale", "scaleCorrection", "width",
 * "height" and "rsun" that are greater than 0, and always "refPixelX" and "refPixelY", which are 0
 * when unknown. A source id that is not a number reads as 0. Takes time linear in the file size.
 * Reading stops at a line of more than 1 MB, which no manifest has.
 *
 * @return nothing when the file is empty, not a regular file or cannot be opened; @p errorText,
 *         which may be null, then says why
 */
std::optional<ManifestFrames> read(const QString &manifestPath, QString *errorText = nullptr);

} // namespace ManifestReader
