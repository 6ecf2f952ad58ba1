#pragma once

#include "roi/roisession.h"

#include <QHash>
#include <QPair>

/**
 * The part of a session that films are made of.
 *
 * It is stored as times, so that it is the same for all datasources. Frames without a time belong
 * to it only while it leaves nothing out; a datasource whose frames have no times at all has an
 * interval of its own, by position.
 */
struct FrameInterval
{
    QDateTime fromUtc;                     ///< the first moment; invalid for the beginning
    QDateTime toUtc;                       ///< the last moment; invalid for the end
    QHash<int, QPair<int, int>> positions; ///< first and last frame, by the row of the datasource
};

/// Applies an interval to the frames of one datasource, given by its row in the session.
namespace FrameIntervals {

/// Whether any of the frames has a time.
bool haveTimes(const QVector<RoiSourceFrame> &frames);

/// Whether @p interval leaves nothing out.
bool isAll(const FrameInterval &interval);

/// The frames of the datasource that are in the interval, by their positions.
QVector<int> kept(const FrameInterval &interval, const QVector<RoiSourceFrame> &frames, int row);

/// The datasource with only these frames.
RoiSource cut(const FrameInterval &interval, const RoiSource &source, int row);

/// @p interval changed to begin with a frame; an end before that is dropped.
FrameInterval beginningAt(FrameInterval interval, const QVector<RoiSourceFrame> &frames, int row,
                          int index);

/// @p interval changed to end with a frame; a beginning after that is dropped.
FrameInterval endingAt(FrameInterval interval, const QVector<RoiSourceFrame> &frames, int row,
                       int index);

/// The times of an interval, for the user; empty when it has none.
QString timesText(const FrameInterval &interval);

/// Which of @p frames frames a datasource films, in a few words.
QString keptText(const QVector<int> &kept, int frames);

/// What the interval means, in a sentence.
QString explanation(const FrameInterval &interval, int row);

} // namespace FrameIntervals
