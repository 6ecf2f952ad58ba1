#pragma once

#include "simulator/service/fault.h"

#include <QVector>

namespace Simulator {

/// Which faults befall which request.
class FaultPlan
{
public:
    void add(const Fault &fault) { m_faults.append(fault); }
    void clear() { m_faults.clear(); }

    /// The faults of the @p number th request of an operation, counted from 1, as added.
    QVector<Fault> of(Operation operation, int number) const;

private:
    QVector<Fault> m_faults;
};

/// The first fault of a kind, or null; @p faults must outlive the result.
const Fault *findFault(const QVector<Fault> &faults, FaultKind kind);

} // namespace Simulator
