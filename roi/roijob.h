#pragma once

#include "output/filmencoder.h"
#include "roi/roivideoplan.h"

/// One film of a run: a region of a datasource, and the files on the way to it.
class RoiJob final
{
public:
    /// All three have to outlive the job.
    RoiJob(const RoiVideoPlan &plan, const RoiFilmSource &filmed, const NumberedRoi &region);

    const Roi &roi() const { return m_region.roi; }
    const QString &nickname() const { return m_filmed.source.nickname; }
    const QVector<RoiSourceFrame> &frames() const { return m_filmed.source.frames; }
    RoiLook look() const;

    const QString &framesFolder() const { return m_framesFolder; } ///< of its pictures
    const QString &film() const { return m_film; }                 ///< path of the MP4

    /// Path of a picture; the introduction comes first.
    QString picturePath(int index) const;
    int firstSequencePicture() const { return m_plan.introFrames(); }
    /// What the encoder is asked for once all pictures are there.
    FilmOrder order() const;

    /// How many pictures of the sequence another job has written, from the first on.
    int picturesAhead() const { return m_picturesAhead; }
    void countPictureAhead() { ++m_picturesAhead; }

private:
    const RoiVideoPlan &m_plan;
    const RoiFilmSource &m_filmed;
    const NumberedRoi &m_region;
    QString m_framesFolder;
    QString m_film;
    int m_picturesAhead = 0;
};
