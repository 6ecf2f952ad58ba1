#pragma once

#include "roi/roivideogenerator.h"
#include "roi/scalelookup.h"

#include <QDateTime>
#include <QObject>

class QWidget;

/**
 * Runs of the region tool: finds the scales that are missing, then makes the films, both with a
 * dialog that shows the progress and can cancel.
 */
class RoiRun final : public QObject
{
    Q_OBJECT

public:
    /// Its dialogs appear above @p window, which owns it.
    explicit RoiRun(QWidget *window);

    bool isActive() const { return m_activity != Activity::None; }
    const ScaleLookup &scales() const { return m_lookup; }
    const RoiVideoGenerator &generator() const { return m_generator; }

    /**
     * Carries out @p plan and returns when it is done; windows stay responsive meanwhile.
     *
     * @param sessionStartUtc  when to ask for the scale of frames that have no time
     */
    RoiVideoGenerator::Outcome make(RoiVideoPlan plan, const QDateTime &sessionStartUtc);

public slots:
    /// Ends a run within a second; does nothing without one.
    void cancel();

signals:
    /// A run begins, and has ended.
    void activeChanged(bool active);
    /// A line for the log.
    void logMessage(const QString &text);
    /// A sentence for the status line.
    void statusChanged(const QString &text);

private:
    /// What a run is doing; it is Canceling until make() returns.
    enum class Activity { None, LookingUp, Filming, Canceling };

    bool findScales(RoiVideoPlan &plan, const QDateTime &sessionStartUtc);
    RoiVideoGenerator::Outcome film(const RoiVideoPlan &plan);

    QWidget *m_window; // not owned
    ScaleLookup m_lookup;
    RoiVideoGenerator m_generator;
    Activity m_activity = Activity::None;
};
