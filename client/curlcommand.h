#pragma once

#include <QStringList>

/**
 * What all curl command lines have in common, and the switch to unverified HTTPS.
 *
 * The switch applies to the whole run, not to one client: once a certificate has failed, it fails
 * for every request, and trying each one with the check first would double their number.
 */
namespace CurlCommand {

/// curl's exit code for a certificate that it cannot verify.
constexpr int certificateFailureExitCode = 60;

/**
 * The leading arguments of a request, from sys/orvik.ini as it stands now.
 *
 * The caller appends its own and puts the URL last.
 */
QStringList commonArguments();

/// @p arguments with the certificate check switched off.
QStringList withoutCertificateCheck(const QStringList &arguments);

/// From now on commonArguments() switches the check off, while sys/orvik.ini allows that.
void activateInsecureMode();

/// True for the first caller of the run only, who is then to warn the user.
bool claimInsecureWarning();

} // namespace CurlCommand
