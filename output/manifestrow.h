#pragma once

#include "session/framerequest.h"

#include <QDateTime>
#include <QJsonObject>
#include <QString>

#include <array>
#include <optional>

/// How one request ended.
enum class FrameStatus { Ok, RejectedTime, Duplicate, CorruptImage, DownloadError, LookupError };
constexpr std::array<FrameStatus, 6> frameStatuses = {
    FrameStatus::Ok,           FrameStatus::RejectedTime,  FrameStatus::Duplicate,
    FrameStatus::CorruptImage, FrameStatus::DownloadError, FrameStatus::LookupError};

/// One outcome, as it is entered in the ledger.
struct ManifestRow
{
    FrameRequest request;
    QDateTime actualUtc; ///< invalid when the service named no image
    qint64 imageId = -1; ///< below 1 when none is known
    qint64 deltaSeconds = 0;
    int toleranceSeconds = 0;
    QString file;       ///< relative to the session; empty when no original was kept
    QString videoFrame; ///< relative to the session; empty when no annotated copy was made
    FrameStatus status = FrameStatus::Ok;
    QJsonObject metadata; ///< the closest-image answer
};

/// Outcomes as texts.
namespace ManifestRows {

/// The word that the manifest stores.
QString toText(FrameStatus status);

/// The status of a stored word; nothing for any other.
std::optional<FrameStatus> frameStatus(const QStringRef &word);

/// The row as written to manifest.csv, including its line feed.
QString toLine(const ManifestRow &row);

} // namespace ManifestRows
