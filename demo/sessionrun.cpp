#include "demo/sessionrun.h"

#include "acquisition/acquisitioncontroller.h"
#include "base/runtimeconfig.h"
#include "demo/terminal.h"

#include <QEventLoop>
#include <QSettings>

void SessionRun::configure(const QString &key, const QVariant &value)
{
    RuntimeConfig::ensureRuntimeConfig();
    QSettings config(RuntimeConfig::configFilePath(), QSettings::IniFormat);
    config.setIniCodec("UTF-8");
    config.setValue(key, value);
}

std::optional<QString> SessionRun::acquire(const AcquisitionSettings &settings, Terminal &terminal,
                                           QString *errorText)
{
    AcquisitionController controller;
    QEventLoop loop;
    QString sessionDirectory;
    QObject::connect(&controller, &AcquisitionController::logMessage, &loop,
                     [&](const QString &text) { terminal.logLine(text); });
    QObject::connect(&controller, &AcquisitionController::stateChanged, &loop,
                     [&](const QString &text) { terminal.setState(text); });
    QObject::connect(&controller, &AcquisitionController::progressChanged, &loop,
                     [&](int value, int maximum) { terminal.setProgress(value, maximum); });
    QObject::connect(&controller, &AcquisitionController::finished, &loop,
                     [&](bool, const QString &directory) {
                         sessionDirectory = directory;
                         loop.quit();
                     });
    if (!controller.start(settings, errorText))
        return std::nullopt;
    // A short session may be over before start() returns; quit() would then come too early.
    if (controller.isRunning())
        loop.exec();
    terminal.endProgress();
    return sessionDirectory;
}
