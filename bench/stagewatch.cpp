#include "bench/stagewatch.h"

#include "acquisition/acquisitioncontroller.h"

namespace {

constexpr int tickMs = 2; // fine enough to see a stall, coarse enough to cost nothing
constexpr double nsPerMs = 1e6;

} // namespace

StageWatch::StageWatch(AcquisitionController &controller)
{
    m_clock.start();
    // Only curl runs here: a session without films starts no encoder.
    const auto children = controller.findChildren<QProcess *>();
    for (const QProcess *child : children)
        connect(child, &QProcess::stateChanged, this, &StageWatch::onProcessState);
    m_tick.setTimerType(Qt::PreciseTimer);
    connect(&m_tick, &QTimer::timeout, this, &StageWatch::onTick);
    m_tick.start(tickMs);
}

void StageWatch::enterWindow()
{
    m_beforeWindow = m_stage;
    enter(Window);
}

void StageWatch::leaveWindow()
{
    enter(m_beforeWindow);
}

QJsonObject StageWatch::stagesMs(int frames) const
{
    static const char *const names[StageCount] = {"lookup", "judge", "download", "accept",
                                                  "window"};
    QJsonObject stages;
    for (int stage = 0; stage < StageCount; ++stage)
        stages[QLatin1String(names[stage])] =
            static_cast<double>(m_spent[stage]) / nsPerMs / frames;
    return stages;
}

double StageWatch::largestStallMs() const
{
    return std::max(0.0, static_cast<double>(m_longestGap) / nsPerMs - tickMs);
}

void StageWatch::onProcessState(QProcess::ProcessState state)
{
    if (state == QProcess::Starting)
        enter(m_stage == Judge ? Download : Lookup);
    else if (state == QProcess::NotRunning)
        enter(m_stage == Lookup ? Judge : Accept);
}

void StageWatch::onTick()
{
    const qint64 now = m_clock.nsecsElapsed();
    if (m_lastTick > 0)
        m_longestGap = std::max(m_longestGap, now - m_lastTick);
    m_lastTick = now;
}

void StageWatch::enter(Stage stage)
{
    const qint64 now = m_clock.nsecsElapsed();
    m_spent[m_stage] += now - m_stageSince;
    m_stageSince = now;
    m_stage = stage;
}
