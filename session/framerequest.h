#pragma once

#include "session/datasource.h"

#include <QDateTime>

/// One planned lookup: an instant of a datasource.
struct FrameRequest : DataSource
{
    QDateTime requestedUtc;
    int requestIndex = 0; ///< position in the plan of all datasources, sorted by time, from 0
};
