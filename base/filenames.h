#pragma once

#include <QString>

class QDateTime;

/// Names of files and folders made from texts that people or the service wrote.
namespace FileNames {

/**
 * The folder of one datasource inside a session: the nickname as a file-name part, "source" when
 * nothing is left of it, then "_" and the session's start, as in "AIA_171_20240101_000000".
 */
QString datasourceFolder(const QString &nickname, const QDateTime &startUtc);

/// The part of a file name that stands for a region of interest; "ROI" when nothing is left of it.
QString roiPart(const QString &name);

} // namespace FileNames
