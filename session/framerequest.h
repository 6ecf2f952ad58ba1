#pragma once

#include <QDateTime>
#include <QString>

/// One planned lookup.
struct FrameRequest
{
    QString nickname;
    QString path;
    QDateTime requestedUtc;
    int sourceId = -1;
    int requestIndex = 0; ///< position in the plan of all datasources, sorted by time, from 0
};
