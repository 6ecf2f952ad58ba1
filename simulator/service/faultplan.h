#pragma once

#include "simulator/service/fault.h"

#include <QMutex>
#include <QVector>

#include <array>

namespace Simulator {

/**
 * Counts requests and decides which faults apply to which.
 *
 * May be used from several threads.
 */
class FaultPlan final
{
public:
    void add(const Fault &fault);
    void clear();

    /// Counts one more request of an operation; returns the faults that apply to it, as added.
    QVector<Fault> next(Operation operation);
    int count(Operation operation) const;
    void clearCounts();

private:
    mutable QMutex m_mutex;
    QVector<Fault> m_faults;
    std::array<int, 4> m_counts{}; // by operation
};

/// The first fault of a kind, or null; @p faults must outlive the result.
const Fault *findFault(const QVector<Fault> &faults, FaultKind kind);

} // namespace Simulator
