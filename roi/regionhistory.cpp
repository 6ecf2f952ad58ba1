#include "roi/regionhistory.h"

#include <utility>

namespace {

constexpr int keptSteps = 500;
constexpr int never = -1; // a step with this field is never joined

class Step final : public QUndoCommand
{
public:
    Step(RegionState before, RegionState after, int field, int series,
         const std::function<void(const RegionState &)> &show)
        : m_before(std::move(before))
        , m_after(std::move(after))
        , m_field(field)
        , m_series(series)
        , m_show(show)
    {}

    int id() const override { return m_field; }
    void undo() override { m_show(m_before); }
    void redo() override { m_show(m_after); }

    bool mergeWith(const QUndoCommand *next) override
    {
        const auto *step = static_cast<const Step *>(next); // the stack has compared the id
        if (step->m_series != m_series)
            return false;
        m_after = step->m_after;
        setObsolete(m_after.rois == m_before.rois);
        return true;
    }

private:
    RegionState m_before;
    RegionState m_after;
    int m_field;
    int m_series;
    const std::function<void(const RegionState &)> &m_show; // the history's
};

} // namespace

RegionHistory::RegionHistory(std::function<void(const RegionState &)> show)
    : m_show(std::move(show))
{
    m_stack.setUndoLimit(keptSteps);
}

void RegionHistory::take(const RegionState &before, const RegionState &after)
{
    m_stack.push(new Step(before, after, never, m_series, m_show));
}

void RegionHistory::takeTyped(const RegionState &before, const RegionState &after, int field)
{
    m_stack.push(new Step(before, after, field, m_series, m_show));
}
