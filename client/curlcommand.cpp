#include "client/curlcommand.h"

#include "base/runtimeconfig.h"

#include <QFileInfo>

#include <utility>

namespace {

// Shared by all clients, touched only on the GUI thread, never cleared.
bool insecureModeActive = false;
bool insecureWarningLogged = false;

} // namespace

QStringList CurlCommand::commonArguments()
{
    QStringList arguments{
        QStringLiteral("-f"),
        QStringLiteral("-sS"),
        QStringLiteral("-L"),
        QStringLiteral("--retry"),
        QStringLiteral("2"),
        QStringLiteral("--connect-timeout"),
        QString::number(RuntimeConfig::connectTimeoutSeconds()),
        QStringLiteral("--max-time"),
        QString::number(RuntimeConfig::maxTransferSeconds()),
    };
    const QString caBundle = RuntimeConfig::caBundlePath();
    if (QFileInfo(caBundle).isFile())
        arguments << QStringLiteral("--cacert") << caBundle;
    if (insecureModeActive && RuntimeConfig::allowInsecureFallback())
        return withoutCertificateCheck(arguments);
    return arguments;
}

QStringList CurlCommand::withoutCertificateCheck(const QStringList &arguments)
{
    return QStringList{QStringLiteral("--insecure")} + arguments;
}

void CurlCommand::activateInsecureMode()
{
    insecureModeActive = true;
}

bool CurlCommand::claimInsecureWarning()
{
    return !std::exchange(insecureWarningLogged, true);
}
