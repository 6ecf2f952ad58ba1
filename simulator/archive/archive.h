#pragma once

#include "simulator/archive/imageids.h"

#include <QSize>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>
#include <optional>
#include <vector>

class QDateTime;

namespace Simulator {

class Cadence;

/// When a datasource takes pictures.
enum class CadenceLaw {
    Regular,  ///< every spacing seconds
    Jittered, ///< as Regular, each moved by up to jitterSeconds
    Gaps,     ///< as Jittered, with single pictures and whole stretches missing
    Bursts,   ///< runs of pictures with long pauses between
};

/// Whose distance from the Sun sets the size of the disk.
enum class Orbit {
    Fixed,       ///< always the radius given
    Earth,       ///< the radius given is the one at 1 au
    SunEarthL1,  ///< as Earth, one per cent closer to the Sun
    SolarOrbiter ///< as Earth, on an orbit between 0.29 and 0.95 au
};

/// How pictures of one datasource differ in size and place.
enum class Framing {
    Whole,    ///< all alike
    Binned,   ///< the whole field at a full, half, quarter or eighth of the native size
    SubField, ///< parts of the Sun: the reference pixel moves from picture to picture
};

/// From a time on, another spacing holds.
struct CadenceChange
{
    QString from; ///< "2022-01-01 00:00:00"
    int spacingSeconds = 0;
};

/// What the service knows of one datasource.
struct ArchiveSource
{
    QString path; ///< "SDO/AIA/171"
    QString nickname;
    int sourceId = 0;
    int widthPx = 4096; ///< native
    int heightPx = 4096;
    double rsunPx = 1600.0; ///< solar radius in native pixels
    double refPixelX = 2048.5;
    double refPixelY = 2048.5; ///< counted from the bottom edge
    QString start;             ///< "2010-06-02 00:05:36"; null without any image
    QString end;
    CadenceLaw law = CadenceLaw::Regular;
    int spacingSeconds = 36;
    int jitterSeconds = 0;

    QVector<CadenceChange> changes; ///< in ascending order
    int oddShiftSeconds = 0;        ///< every second picture is taken that much later
    int dayStartHour = 0;           ///< UTC hours of observation; equal when it never stops
    int dayEndHour = 0;
    Orbit orbit = Orbit::Fixed;
    Framing framing = Framing::Whole;
    int layeringOrder = 1;
    QStringList levelLabels;     ///< names of the levels of the path; empty for the usual ones
    int groupedSourceId = -1;    ///< a group has no pictures of its own but shows those of this one
    bool alphaWhereDark = false; ///< black pixels are transparent
};

/// One picture of the archive.
struct ArchiveImage
{
    int sourceIndex = 0; ///< in Archive::sources()
    qint64 slot = 0;     ///< its place in the sequence of that source
    qint64 unixTime = 0;
};

/**
 * All datasources of a service.
 *
 * Which pictures exist is computed, not stored: an archive of 15 years takes no memory.
 */
class Archive
{
public:
    explicit Archive(QVector<ArchiveSource> sources);
    ~Archive();

    /// About forty datasources, as the public archive had them on 2026-09-06 at 17:28 UTC.
    static std::shared_ptr<const Archive> sample();
    /// The same, with what was still growing then grown on to @p presentUtc, as far behind as then.
    static std::shared_ptr<const Archive> sampleAt(const QDateTime &presentUtc);

    const QVector<ArchiveSource> &sources() const { return m_sources; }

    /// The datasource with that id, or null.
    const ArchiveSource *find(int sourceId) const;
    const ArchiveSource &sourceOf(const ArchiveImage &image) const;

    /// Pictures around a time; none when the datasource is unknown or has none on that side.
    std::optional<ArchiveImage> nearest(int sourceId, qint64 unixTime) const;
    std::optional<ArchiveImage> atOrAfter(int sourceId, qint64 unixTime) const;
    std::optional<ArchiveImage> atOrBefore(int sourceId, qint64 unixTime) const;

    /// Ids are positive and not in the order of time.
    qint64 idOf(const ArchiveImage &image) const;
    std::optional<ArchiveImage> imageOf(qint64 id) const;

private:
    using Search = std::optional<qint64> (Cadence::*)(qint64) const;
    std::optional<ArchiveImage> search(int sourceId, qint64 unixTime, Search how) const;

    QVector<ArchiveSource> m_sources;
    std::vector<Cadence> m_cadences;    // one per source
    std::vector<qint64> m_firstNumbers; // of each source's slots, and the number after all
    ImageIds m_ids;
};

} // namespace Simulator
