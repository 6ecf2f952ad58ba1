#include "simulator/service/journal.h"

#include <QMutexLocker>

namespace Simulator {

namespace {

constexpr int longestJournal = 100'000; // entries, some 20 MB; a service may run for weeks

} // namespace

QVector<Fault> Journal::begin(Operation operation, const QByteArray &query)
{
    const QMutexLocker locker(&m_mutex);
    ++m_inFlight;
    if (m_entries.size() < longestJournal)
        m_entries.append({operation, query, QDateTime::currentDateTimeUtc(), m_inFlight});
    return m_faults.of(operation, ++m_counts[size_t(operation)]);
}

void Journal::end()
{
    const QMutexLocker locker(&m_mutex);
    --m_inFlight;
}

QVector<JournalEntry> Journal::entries() const
{
    const QMutexLocker locker(&m_mutex);
    return m_entries;
}

int Journal::count(Operation operation) const
{
    const QMutexLocker locker(&m_mutex);
    return m_counts[size_t(operation)];
}

void Journal::clear()
{
    const QMutexLocker locker(&m_mutex);
    m_entries.clear();
    m_counts.fill(0);
}

void Journal::addFault(const Fault &fault)
{
    const QMutexLocker locker(&m_mutex);
    m_faults.add(fault);
}

void Journal::clearFaults()
{
    const QMutexLocker locker(&m_mutex);
    m_faults.clear();
}

} // namespace Simulator
