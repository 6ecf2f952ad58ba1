#pragma once

#include "output/manifestrow.h"

#include <QDateTime>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include <array>
#include <optional>

class QDir;

/// A frame that was accepted.
struct LedgerFrame
{
    int number = -1; ///< in its file's name; -1 when that is no frame's
    QDateTime requestedUtc;
    QDateTime actualUtc;
};
Q_DECLARE_TYPEINFO(LedgerFrame, Q_MOVABLE_TYPE);

/// Everything a manifest says about one datasource.
struct SourceLedger
{
    int sourceId = -1;
    QString nickname;
    int toleranceSeconds = 0; ///< the last one in force
    QString archiveName;      ///< the folder of its first frame; empty when no frame names one
    std::array<qint64, frameStatuses.size()> outcomes{}; ///< requests, by status
    qint64 annotatedFrames = 0;                          ///< accepted, with a copy for the film
    QVector<qint64> requestedSeconds; ///< since the epoch, in the order of the rows
    QVector<LedgerFrame> frames;      ///< in the order of the rows

    qint64 count(FrameStatus status) const { return outcomes[static_cast<std::size_t>(status)]; }
    qint64 acceptedFrames() const { return count(FrameStatus::Ok); }
    qint64 requests() const;
    QVector<int> frameNumbers() const; ///< of its frames
    /// The median spacing of its requests, the wider of two middle ones; 0 when there is none.
    int stepSeconds() const;
};

/// Everything a manifest says.
struct SessionLedger
{
    QVector<SourceLedger> sources; ///< in the order of their first rows
    QHash<int, int> positions;     ///< in sources, by sourceId
    QStringList remarks;           ///< sentences about what could not be read

    qint64 requests() const;
    qint64 acceptedFrames() const;
    /// Has no requests if the manifest does not list it.
    SourceLedger source(int sourceId) const;
};

namespace SessionLedgers {

/**
 * Reads the manifest of @p session in time linear in its rows.
 *
 * @return nothing when it cannot be opened or is empty; @p errorText, which may be null, then says
 *         why
 */
std::optional<SessionLedger> read(const QDir &session, QString *errorText = nullptr);

} // namespace SessionLedgers
