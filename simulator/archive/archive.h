#pragma once

#include <QString>
#include <QVector>

#include <memory>
#include <optional>
#include <vector>

class QDateTime;

namespace Simulator {

class Cadence;

/// When a datasource takes pictures: every spacing seconds, each moved by up to the jitter.
enum class CadenceLaw {
    Steady,
    Gaps,  ///< single pictures and whole stretches of hours are missing
    Bursts ///< runs of pictures with long pauses between
};

/// What the service knows of one datasource.
struct ArchiveSource
{
    QString path; ///< "SDO/AIA/171"
    QString nickname;
    int sourceId = 0;
    int widthPx = 4096; ///< native
    int heightPx = 4096;
    double rsunPx = 1600.0;    ///< solar radius in native pixels, at 1 au
    double refPixelX = 2048.5; ///< of the disk's centre, first pixel 1; may lie outside
    double refPixelY = 2048.5; ///< counted from the bottom edge
    QString start;             ///< "2010-06-02 00:05:36"; null without any image
    QString end;
    CadenceLaw law = CadenceLaw::Steady;
    int spacingSeconds = 36;
    int jitterSeconds = 0;
    bool staysWithEarth = false; ///< nearer to the Sun in January than in July
    double rollDegrees = 0.0;    ///< of the telescope; 0 where the images' headers tell none
    int layeringOrder = 1;
    int groupedSourceId = -1; ///< a group has no pictures of its own but shows those of this one
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
 * Which pictures exist is computed, not stored: an archive of 30 years takes no memory.
 */
class Archive final
{
public:
    explicit Archive(QVector<ArchiveSource> sources);
    ~Archive();

    /// About forty datasources, as the public archive had them on 2026-09-06 at 17:28 UTC.
    static std::shared_ptr<const Archive> sample();
    /// The same, with what was still growing extended to @p presentUtc, less its delay then.
    static std::shared_ptr<const Archive> sampleAt(const QDateTime &presentUtc);

    const QVector<ArchiveSource> &sources() const { return m_sources; }

    /// The datasource with that id, or null.
    const ArchiveSource *find(int sourceId) const;
    const ArchiveSource &sourceOf(const ArchiveImage &image) const;

    /// Pictures around a time; none when the datasource is unknown or has none on that side.
    std::optional<ArchiveImage> nearest(int sourceId, qint64 unixTime) const;
    std::optional<ArchiveImage> atOrAfter(int sourceId, qint64 unixTime) const;
    std::optional<ArchiveImage> atOrBefore(int sourceId, qint64 unixTime) const;

    /// Ids are positive; those of one datasource follow those of another.
    qint64 idOf(const ArchiveImage &image) const;
    std::optional<ArchiveImage> imageOf(qint64 id) const;

private:
    using Search = std::optional<qint64> (Cadence::*)(qint64) const;
    std::optional<ArchiveImage> search(int sourceId, qint64 unixTime, Search how) const;

    QVector<ArchiveSource> m_sources;
    std::vector<Cadence> m_cadences; // one per source
    std::vector<qint64> m_firstIds;  // of each source's slots, and the id after all
};

} // namespace Simulator
