#pragma once

#include <QString>

class QVariant;

/**
 * The machine-level settings that the user edits by hand in sys/orvik.ini beside the program.
 *
 * Every read opens the file anew, so that an edit takes effect at once; nothing is cached and a
 * value that is present is never rewritten. A missing or unreadable file gives the defaults, an
 * integer that is not a number reads as 0.
 */
namespace RuntimeConfig {

/// Creates bin, sys and out beside the program and completes the file with the missing keys.
void ensureRuntimeConfig();

/// Absolute path of sys/orvik.ini in the application directory.
QString configFilePath();

/// An absolute path, cleaned; a relative one is taken against the application directory.
QString resolveAppPath(const QString &path);

/// "network/apiBase" without trailing slashes.
QString apiBase();

QString curlPath();     ///< "paths/curl", resolved
QString ffmpegPath();   ///< "paths/ffmpeg", resolved
QString outputRoot();   ///< "paths/output", resolved
QString catalogPath();  ///< "paths/catalog", resolved
QString caBundlePath(); ///< "network/caBundle", resolved

// Passed to curl unchanged; it refuses every request when one is negative.
int connectTimeoutSeconds(); ///< until connected; 0: curl's default of 300
int maxTransferSeconds();    ///< of each attempt, connecting included; 0: no limit

bool allowInsecureFallback();    ///< to continue unverified after a certificate failure
int preflightParallelRequests(); ///< 1 to 6
int preflightProbeSeconds();     ///< 300 to 86400
int aiaMaxTimeErrorSeconds();    ///< at least 0
int suviMaxTimeErrorSeconds();   ///< at least 0

/**
 * A key that the user may have added to the thirteen of the program, such as
 * "acquisition/cadenceSeconds"; an invalid variant when it is absent.
 */
QVariant preset(const QString &key);

} // namespace RuntimeConfig
