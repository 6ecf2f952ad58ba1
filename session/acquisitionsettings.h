#pragma once

#include "session/datasource.h"

#include <QDateTime>
#include <QVector>

/// What the user asked for: one session's interval, sampling, pictures and films.
struct AcquisitionSettings
{
    QDateTime startUtc;
    QDateTime endUtc;
    int cadenceSeconds = 60;
    int maxTimeErrorSeconds = 30; ///< tolerance between requested and actual time of an image
    int imageWidth = 1024;        ///< pixels
    int videoFps = 25;
    int videoCrf = 18; ///< x264 constant rate factor
    bool keepFrames = true;
    bool sourceOverlay = true;
    bool scaleOverlay = false;
    bool createVideos = true;
    bool useSourceTimingProfiles = true; ///< per-instrument tolerances of sys/orvik.ini
    QVector<DataSource> sources;
};
