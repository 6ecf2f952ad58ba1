#include "simulator/service/faultplan.h"

#include <algorithm>

namespace Simulator {

QVector<Fault> FaultPlan::of(Operation operation, int number) const
{
    QVector<Fault> faults;
    std::copy_if(m_faults.begin(), m_faults.end(), std::back_inserter(faults),
                 [operation, number](const Fault &fault) {
                     return fault.operation == operation && number >= fault.first &&
                            number - fault.first < fault.count;
                 });
    return faults;
}

const Fault *findFault(const QVector<Fault> &faults, FaultKind kind)
{
    const auto found = std::find_if(faults.begin(), faults.end(),
                                    [kind](const Fault &fault) { return fault.kind == kind; });
    return found == faults.end() ? nullptr : &*found;
}

} // namespace Simulator
