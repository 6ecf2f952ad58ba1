#include "simulator/service/faultplan.h"

#include <QMutexLocker>

#include <algorithm>

namespace Simulator {

void FaultPlan::add(const Fault &fault)
{
    const QMutexLocker locker(&m_mutex);
    m_faults.append(fault);
}

void FaultPlan::clear()
{
    const QMutexLocker locker(&m_mutex);
    m_faults.clear();
}

QVector<Fault> FaultPlan::next(Operation operation)
{
    const QMutexLocker locker(&m_mutex);
    const int number = ++m_counts[static_cast<size_t>(operation)];
    QVector<Fault> faults;
    std::copy_if(m_faults.cbegin(), m_faults.cend(), std::back_inserter(faults),
                 [operation, number](const Fault &fault) {
                     return fault.operation == operation && number >= fault.first &&
                            number - fault.first < fault.count;
                 });
    return faults;
}

int FaultPlan::count(Operation operation) const
{
    const QMutexLocker locker(&m_mutex);
    return m_counts[static_cast<size_t>(operation)];
}

void FaultPlan::clearCounts()
{
    const QMutexLocker locker(&m_mutex);
    m_counts.fill(0);
}

const Fault *findFault(const QVector<Fault> &faults, FaultKind kind)
{
    const auto found = std::find_if(faults.cbegin(), faults.cend(),
                                    [kind](const Fault &fault) { return fault.kind == kind; });
    return found == faults.cend() ? nullptr : &*found;
}

} // namespace Simulator
