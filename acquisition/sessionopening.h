#pragma once

#include <QStringList>
#include <QVector>

struct AcquisitionSettings;
struct ProbeWindow;

/// Checks, probe windows and log lines of a session before its first request.
namespace SessionOpening {

/// Why a session cannot be started with @p settings on this machine; empty when it can.
QString refusal(const AcquisitionSettings &settings);

/// One window at the start of the interval for every datasource that is not dense.
QVector<ProbeWindow> probeWindows(const AcquisitionSettings &settings);

/// The first lines of the log.
QStringList logLines(const AcquisitionSettings &settings, const QString &sessionDirectory,
                     int probeCount);

} // namespace SessionOpening
