#include "acquisition/sessionopening.h"

#include "acquisition/acquisitionlog.h"
#include "acquisition/probequeue.h"
#include "acquisition/sourcetiming.h"
#include "base/runtimeconfig.h"
#include "session/acquisitionsettings.h"

#include <QFileInfo>

#include <algorithm>

namespace {

/// A single instant is an interval too.
bool isInterval(const QDateTime &startUtc, const QDateTime &endUtc)
{
    return startUtc.isValid() && endUtc.isValid() && endUtc >= startUtc;
}

QStringList toleranceLines(const AcquisitionSettings &settings)
{
    if (!settings.useSourceTimingProfiles)
        return {AcquisitionLog::timingProfilesDisabled(settings.maxTimeErrorSeconds)};
    QStringList lines = {AcquisitionLog::timingProfilesEnabled()};
    for (const DataSource &source : settings.sources)
        lines += AcquisitionLog::sourceTiming(source, SourceTiming::profileOf(source),
                                              SourceTiming::toleranceSeconds(source, settings));
    return lines;
}

} // namespace

QString SessionOpening::refusal(const AcquisitionSettings &settings)
{
    if (settings.sources.isEmpty())
        return AcquisitionLog::noDatasource();
    if (!isInterval(settings.startUtc, settings.endUtc))
        return AcquisitionLog::invalidInterval();
    if (settings.cadenceSeconds <= 0)
        return AcquisitionLog::invalidCadence();
    if (!QFileInfo(RuntimeConfig::curlPath()).isFile())
        return AcquisitionLog::curlMissing();
    if (settings.createVideos && !QFileInfo(RuntimeConfig::ffmpegPath()).isFile())
        return AcquisitionLog::ffmpegMissing();
    return {};
}

QVector<ProbeWindow> SessionOpening::probeWindows(const AcquisitionSettings &settings)
{
    const QDateTime startUtc = settings.startUtc.toUTC();
    const QDateTime endUtc =
        std::min(startUtc.addSecs(RuntimeConfig::preflightProbeSeconds()), settings.endUtc.toUTC());
    QVector<ProbeWindow> windows;
    for (const DataSource &source : settings.sources) {
        if (!SourceTiming::isDense(source))
            windows.append({source, startUtc, endUtc});
    }
    return windows;
}

QStringList SessionOpening::logLines(const AcquisitionSettings &settings,
                                     const QString &sessionDirectory, int probeCount)
{
    QStringList lines = {AcquisitionLog::session(sessionDirectory),
                         AcquisitionLog::selectedSources(settings.sources)};
    const int denseCount = settings.sources.size() - probeCount;
    if (denseCount > 0)
        lines += AcquisitionLog::fastPath(denseCount, settings.cadenceSeconds);
    if (probeCount > 0)
        lines += AcquisitionLog::quickProbe(probeCount, RuntimeConfig::preflightProbeSeconds(),
                                            RuntimeConfig::preflightParallelRequests());
    else
        lines += AcquisitionLog::noProbeRequired();
    return lines + toleranceLines(settings);
}
