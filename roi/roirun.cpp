#include "roi/roirun.h"

#include "roi/roiprogressdialog.h"

#include <QWidget>

using Outcome = RoiVideoGenerator::Outcome;

RoiRun::RoiRun(QWidget *window) : QObject(window), m_window(window)
{
    connect(&m_lookup, &ScaleLookup::logMessage, this, &RoiRun::logMessage);
    connect(&m_lookup, &ScaleLookup::statusChanged, this, &RoiRun::statusChanged);
    connect(&m_generator, &RoiVideoGenerator::logMessage, this, &RoiRun::logMessage);
}

Outcome RoiRun::make(RoiVideoPlan plan, const QDateTime &sessionStartUtc)
{
    m_activity = Activity::LookingUp;
    emit activeChanged(true);
    const bool ready = !plan.overlays.scale || findScales(plan, sessionStartUtc);
    const Outcome outcome = ready ? film(plan) : Outcome::Canceled;
    m_activity = Activity::None;
    emit activeChanged(false);
    return outcome;
}

void RoiRun::cancel()
{
    if (!isActive())
        return;
    m_activity = Activity::Canceling;
    m_lookup.abort();
    m_generator.cancel();
}

/// False when the user gave up waiting.
bool RoiRun::findScales(RoiVideoPlan &plan, const QDateTime &sessionStartUtc)
{
    const RoiProgressDialog progress(m_lookup, m_window);
    connect(&progress, &RoiProgressDialog::canceled, this, &RoiRun::cancel);
    for (RoiFilmSource &filmed : plan.sources) {
        if (m_activity == Activity::LookingUp)
            filmed.scaleMetadata = m_lookup.ensure(filmed.source, sessionStartUtc);
    }
    return m_activity == Activity::LookingUp;
}

Outcome RoiRun::film(const RoiVideoPlan &plan)
{
    m_activity = Activity::Filming;
    RoiProgressDialog progress(m_generator, plan.totalFrames(), m_window);
    connect(&progress, &RoiProgressDialog::canceled, this, &RoiRun::cancel);
    progress.show();
    return m_generator.run(plan);
}
