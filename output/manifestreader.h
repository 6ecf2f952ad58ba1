#pragma once

#include <QDateTime>
#include <QHash>
#include <QJsonObject>
#include <QString>
#include <QVector>

#include <optional>

/// An accepted frame as the manifest tells it.
struct ManifestFrame
{
    QString file;         ///< as written: relative to the session directory
    QDateTime actualUtc;  ///< invalid when unknown
    QJsonObject metadata; ///< keys as in a closest-image answer
};
Q_DECLARE_TYPEINFO(ManifestFrame, Q_MOVABLE_TYPE);

namespace ManifestReader {

/**
 * The accepted frames of each datasource, in file order.
 *
 * Columns are found by their names; a column that is missing reads as empty, and so does a field
 * that a damaged line lacks. The metadata holds those of "scale", "scaleCorrection", "width",
 * "height" and "rsun" that are greater than 0, and always "refPixelX" and "refPixelY", which are 0
 * when unknown. A source id that is no number reads as 0. Time is linear in the size of the file.
 *
 * @return nothing when the file cannot be opened or is empty; @p errorText, which may be null,
 *         then says which
 */
std::optional<QHash<int, QVector<ManifestFrame>>> read(const QString &manifestPath,
                                                       QString *errorText = nullptr);

} // namespace ManifestReader
