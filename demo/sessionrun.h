#pragma once

#include "session/acquisitionsettings.h"

#include <optional>

class QVariant;
class Terminal;

/// The engine, driven as the main window drives it.
namespace SessionRun {

/// Writes a key of sys/orvik.ini, as a user would.
void configure(const QString &key, const QVariant &value);

/// Runs a session to its end; its directory, or nothing with a reason.
std::optional<QString> acquire(const AcquisitionSettings &settings, Terminal &terminal,
                               QString *errorText);

} // namespace SessionRun
