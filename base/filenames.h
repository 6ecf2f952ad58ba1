#pragma once

#include <QString>

class QDateTime;

/**
 * Names of files and folders, made from texts of the user or the service.
 *
 * File systems refuse names of more than 255 bytes. A name that would be longer, with everything
 * that is appended to it, is shortened; other names are kept.
 */
namespace FileNames {

/// The longest name that common file systems accept, in bytes.
constexpr int maxNameBytes = 255;

/**
 * The folder of one datasource inside a session: the nickname as a file-name part, "source" when
 * nothing is left of it, then "_" and the session's start, as in "AIA_171_20240101_000000", and
 * @p suffix. There is room for the extension of a film that has the same name.
 */
QString datasourceFolder(const QString &nickname, const QDateTime &startUtc,
                         const QString &suffix = {});

/// The part of a file name that stands for a region of interest; "ROI" when nothing is left of it.
QString roiPart(const QString &name);

/**
 * The longest beginning of @p name that ends at a whole character and has no more than @p maxBytes
 * bytes as a file name.
 */
QString shortened(const QString &name, int maxBytes);

} // namespace FileNames
