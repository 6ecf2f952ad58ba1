#pragma once

#include "roi/roiset.h"

#include <QUndoStack>

#include <functional>

/// The regions of the list and which of them is selected, at one moment.
struct RegionState
{
    QVector<Roi> rois;
    int row = -1; ///< -1 when none is selected
};

/**
 * The steps by which regions were changed, to be undone and redone.
 *
 * A step keeps the whole list before and after; lists that follow each other share their memory.
 */
class RegionHistory final
{
public:
    /// @p show is called with the state to be shown, by each step, undo and redo.
    explicit RegionHistory(std::function<void(const RegionState &)> show);

    QUndoStack &stack() { return m_stack; }

    /// Adds a step that leaves the list as @p after.
    void take(const RegionState &before, const RegionState &after);
    /**
     * Adds a step that is merged with the one before while the same @p field is being changed.
     *
     * A series that ends where it began leaves no step.
     */
    void takeTyped(const RegionState &before, const RegionState &after, int field);
    /// The next typed step begins a new one.
    void endTyping() { ++m_series; }
    /// Forgets all steps, for another session.
    void clear() { m_stack.clear(); }

private:
    std::function<void(const RegionState &)> m_show;
    QUndoStack m_stack;
    int m_series = 0;
};
