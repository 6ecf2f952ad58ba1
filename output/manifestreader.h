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

namespace ManifestReader {

/**
 * The accepted frames of each datasource, in file order.
 *
 * @return nothing when the file cannot be opened or is empty; @p errorText, which may be null,
 *         then says which
 */
std::optional<QHash<int, QVector<ManifestFrame>>> read(const QString &manifestPath,
                                                       QString *errorText = nullptr);

} // namespace ManifestReader
