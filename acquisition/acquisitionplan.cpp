#include "acquisition/acquisitionplan.h"

#include "session/acquisitionsettings.h"

#include <algorithm>
#include <limits>
#include <tuple>
#include <utility>

qint64 RequestSchedule::requestCount() const
{
    return lastMs < firstMs ? 0 : (lastMs - firstMs) / stepMs + 1;
}

AcquisitionPlan::AcquisitionPlan(QVector<RequestSchedule> schedules)
    : m_schedules(std::move(schedules))
{
    for (int i = 0; i < m_schedules.size(); ++i) {
        const RequestSchedule &schedule = m_schedules.at(i);
        const qint64 count = schedule.requestCount();
        m_size += count;
        if (count > 0)
            m_heads.push_back({schedule.firstMs, schedule.source.sourceId, i});
    }
    std::make_heap(m_heads.begin(), m_heads.end(), &isLater);
}

bool AcquisitionPlan::isLater(const Head &left, const Head &right)
{
    return std::tie(left.timeMs, left.sourceId, left.schedule) >
           std::tie(right.timeMs, right.sourceId, right.schedule);
}

FrameRequest AcquisitionPlan::current() const
{
    const Head &head = m_heads.front();
    return {m_schedules.at(head.schedule).source,
            QDateTime::fromMSecsSinceEpoch(head.timeMs, Qt::UTC),
            static_cast<int>(std::min<qint64>(m_position, std::numeric_limits<int>::max()))};
}

void AcquisitionPlan::advance()
{
    std::pop_heap(m_heads.begin(), m_heads.end(), &isLater);
    Head &head = m_heads.back();
    const RequestSchedule &schedule = m_schedules.at(head.schedule);
    head.timeMs += schedule.stepMs;
    if (head.timeMs <= schedule.lastMs)
        std::push_heap(m_heads.begin(), m_heads.end(), &isLater);
    else
        m_heads.pop_back();
    ++m_position;
}

qint64 AcquisitionPlanning::nominalCount(const AcquisitionSettings &settings)
{
    const qint64 seconds = settings.startUtc.secsTo(settings.endUtc);
    return (seconds / settings.cadenceSeconds + 1) * settings.sources.size();
}
