#include "simulator/archive/archive.h"

#include "simulator/archive/cadence.h"

#include <algorithm>

namespace Simulator {

namespace {

std::vector<Cadence> cadencesOf(const QVector<ArchiveSource> &sources)
{
    return {sources.begin(), sources.end()};
}

std::vector<qint64> firstIdsOf(const std::vector<Cadence> &cadences)
{
    std::vector<qint64> ids{1};
    for (const Cadence &cadence : cadences)
        ids.push_back(ids.back() + cadence.slotCount());
    return ids;
}

} // namespace

Archive::Archive(QVector<ArchiveSource> sources)
    : m_sources(std::move(sources))
    , m_cadences(cadencesOf(m_sources))
    , m_firstIds(firstIdsOf(m_cadences))
{}

Archive::~Archive() = default;

const ArchiveSource *Archive::find(int sourceId) const
{
    const auto found =
        std::find_if(m_sources.begin(), m_sources.end(), [sourceId](const ArchiveSource &source) {
            return source.sourceId == sourceId;
        });
    return found == m_sources.end() ? nullptr : &*found;
}

const ArchiveSource &Archive::sourceOf(const ArchiveImage &image) const
{
    return m_sources.at(image.sourceIndex);
}

std::optional<ArchiveImage> Archive::search(int sourceId, qint64 unixTime, Search how) const
{
    const ArchiveSource *source = find(sourceId);
    if (source && source->groupedSourceId >= 0)
        source = find(source->groupedSourceId);
    if (!source)
        return std::nullopt;
    const int index = static_cast<int>(source - m_sources.constData());
    const Cadence &cadence = m_cadences[static_cast<size_t>(index)];
    const std::optional<qint64> slot = (cadence.*how)(unixTime);
    if (!slot)
        return std::nullopt;
    return ArchiveImage{index, *slot, cadence.timeOf(*slot)};
}

std::optional<ArchiveImage> Archive::nearest(int sourceId, qint64 unixTime) const
{
    return search(sourceId, unixTime, &Cadence::nearestSlot);
}

std::optional<ArchiveImage> Archive::atOrAfter(int sourceId, qint64 unixTime) const
{
    return search(sourceId, unixTime, &Cadence::slotAtOrAfter);
}

std::optional<ArchiveImage> Archive::atOrBefore(int sourceId, qint64 unixTime) const
{
    return search(sourceId, unixTime, &Cadence::slotAtOrBefore);
}

qint64 Archive::idOf(const ArchiveImage &image) const
{
    return m_firstIds[static_cast<size_t>(image.sourceIndex)] + image.slot;
}

std::optional<ArchiveImage> Archive::imageOf(qint64 id) const
{
    if (id < m_firstIds.front() || id >= m_firstIds.back())
        return std::nullopt;
    const auto after = std::upper_bound(m_firstIds.begin(), m_firstIds.end(), id);
    const auto index = static_cast<size_t>(std::prev(after) - m_firstIds.begin());
    const qint64 slot = id - m_firstIds[index];
    if (!m_cadences[index].isPresent(slot))
        return std::nullopt;
    return ArchiveImage{static_cast<int>(index), slot, m_cadences[index].timeOf(slot)};
}

} // namespace Simulator
