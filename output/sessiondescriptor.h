#pragma once

#include "session/acquisitionsettings.h"
#include "session/preflightmode.h"

#include <QDateTime>
#include <QJsonObject>
#include <QString>
#include <QVector>

/// What a session did with one datasource.
struct SessionSourceRecord
{
    DataSource source;
    QString archiveName;   ///< folder name inside the session
    QString timingProfile; ///< "AIA", "SUVI" or "DEFAULT"
    int maxTimeErrorSeconds = 0;
    int acceptedFrames = 0;
    int timestampedVideoFrames = 0;
    int duplicateRequests = 0;
    int rejectedTimeRequests = 0;
    PreflightMode preflightMode = PreflightMode::DirectDenseSource;
    int preflightUniqueFrames = 0;
    int medianSeconds = 0;
    int minSeconds = 0;
    int maxSeconds = 0;
};

/// A finished session.
struct SessionRecord
{
    AcquisitionSettings settings;
    QString apiBase;
    int preflightParallelRequests = 0;
    int preflightProbeSeconds = 0;
    bool canceled = false;
    QDateTime completedUtc;
    QVector<SessionSourceRecord> sources;
};

namespace SessionDescriptor {

/// The object that session.json holds.
QJsonObject toJson(const SessionRecord &session);

} // namespace SessionDescriptor
