#pragma once

#include <QString>
#include <QVector>

namespace Simulator {

class Archive;

/// The frame times that getJPX reports, or why there are none.
struct JpxFrames
{
    QVector<qint64> unixTimes; ///< ascending
    QString message;           ///< null when there is nothing to say
    QString error;             ///< not empty: there are no frames
};

/// A frame index holds at most that many steps.
constexpr int jpxFrameLimit = 1000;

/**
 * Resamples a datasource at @p cadenceSeconds, counted back from the last image of the window.
 *
 * Neither a list of all images nor an even grid: each step takes the nearest image, a repeat of the
 * step before is dropped, and the window's first image comes in front. 0 or less reads as 1.
 */
JpxFrames jpxFrames(const Archive &archive, int sourceId, qint64 startUnixTime, qint64 endUnixTime,
                    int cadenceSeconds);

} // namespace Simulator
