#pragma once

#include "simulator/service/faultplan.h"
#include "simulator/service/server.h"

#include <QMutex>

#include <array>

namespace Simulator {

/**
 * What was asked, in order, and what is to go wrong with it.
 *
 * Keeps the first 100,000 requests since it was cleared, and counts all of them.
 * May be used from several threads.
 */
class Journal
{
public:
    /// Notes a request that has arrived; gives the faults that befall it.
    QVector<Fault> begin(Operation operation, const QByteArray &query);
    /// The request has been served, or has broken off.
    void end();

    QVector<JournalEntry> entries() const;
    int count(Operation operation) const;
    void clear();

    void addFault(const Fault &fault);
    void clearFaults();

private:
    mutable QMutex m_mutex;
    QVector<JournalEntry> m_entries;
    std::array<int, 4> m_counts{}; // by operation
    FaultPlan m_faults;
    int m_inFlight = 0;
};

} // namespace Simulator
