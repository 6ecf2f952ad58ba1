#pragma once

#include "roi/roipicture.h"
#include "roi/roisession.h"
#include "roi/roiset.h"

/// A region to film, with its position in the list, by which its films are numbered.
struct NumberedRoi
{
    int number = 1; ///< counted from 1, regions that are not filmed included
    Roi roi;
};

/// A datasource to film.
struct RoiFilmSource
{
    RoiSource source;          ///< with at least one frame
    QJsonObject scaleMetadata; ///< for frames that have none of their own; may be empty
};

/// Everything that one generation run needs to know.
struct RoiVideoPlan
{
    QString sessionDirectory;
    QVector<RoiFilmSource> sources;
    QVector<NumberedRoi> rois;
    int fps = 25;
    int crf = 18;
    RoiOverlays overlays;
    bool intro = false;
    double introSeconds = 2.5;

    int introFrames() const; ///< per film; 0 without introduction
    int totalFrames() const; ///< of all films

    /// Films the ticked ones of these regions.
    void takeTicked(const QVector<Roi> &all);
    /// Leaves out the datasources without a frame, whose nicknames it returns.
    QStringList leaveOutEmpty();
};
