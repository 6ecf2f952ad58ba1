// One whole acquisition in the terminal, against the sample archive of this machine.

#include "acquisition/acquisitioncontroller.h"
#include "base/runtimeconfig.h"
#include "base/texttable.h"
#include "demo/sessionaudit.h"
#include "demo/terminal.h"
#include "simulator/archive/archive.h"
#include "simulator/service/server.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QSettings>

namespace {

/// Two hours that hold one of EIT's two daily pictures.
AcquisitionSettings demoSettings(const Simulator::Archive &archive)
{
    AcquisitionSettings settings;
    settings.startUtc = QDateTime({2024, 5, 10}, {12, 20}, Qt::UTC);
    settings.endUtc = settings.startUtc.addSecs(7200);
    settings.cadenceSeconds = 120;
    // Half of LASCO's twelve minutes, so that its irregular pictures are all near enough to a
    // request.
    settings.maxTimeErrorSeconds = 360;
    settings.scaleOverlay = true;
    for (const int sourceId :
         {10, 13, 2003, 4, 0}) { // AIA 171 and 304, SUVI 195, LASCO C2, EIT 171
        if (const Simulator::ArchiveSource *source = archive.find(sourceId))
            settings.sources.append({source->sourceId, source->nickname, source->path});
    }
    return settings;
}

/// Points the engine at the simulator, in the file and in the way a user would.
void writeApiBase(const QString &baseUrl)
{
    RuntimeConfig::ensureRuntimeConfig();
    QSettings config(RuntimeConfig::configFilePath(), QSettings::IniFormat);
    config.setIniCodec("UTF-8");
    config.setValue(QStringLiteral("network/apiBase"), baseUrl);
}

/// Runs a session to its end; its directory, or nothing with a reason.
std::optional<QString> acquire(const AcquisitionSettings &settings, Terminal &terminal,
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

QStringList tableRow(const SourceAudit &audit)
{
    const RequestCounts &counts = audit.counts;
    const Film film = audit.film.value_or(Film());
    return {audit.source.nickname,
            QString::number(counts.requested),
            QString::number(counts.accepted),
            QString::number(counts.duplicates),
            QString::number(counts.rejected),
            audit.film ? QStringLiteral("%1 x %2").arg(film.size.width()).arg(film.size.height())
                       : QStringLiteral("none"),
            QString::number(film.frames),
            QString::number(film.seconds, 'f', 2)};
}

/// Prints the table and what is wrong; whether nothing is.
bool report(const QVector<SourceAudit> &audits, const QDir &session, Terminal &terminal)
{
    QVector<QStringList> rows{{QStringLiteral("Datasource"), QStringLiteral("requested"),
                               QStringLiteral("accepted"), QStringLiteral("duplicates"),
                               QStringLiteral("rejected"), QStringLiteral("film"),
                               QStringLiteral("frames"), QStringLiteral("seconds")}};
    QString films = QStringLiteral("Films in %1\n").arg(session.path());
    QStringList faults;
    for (const SourceAudit &audit : audits) {
        rows << tableRow(audit);
        films += QStringLiteral("  %1\n").arg(session.relativeFilePath(audit.filmFile));
        for (const QString &fault : audit.faults)
            faults << QStringLiteral("WARNING %1: %2").arg(audit.source.nickname, fault);
    }
    terminal.print(QLatin1Char('\n') + TextTable::format(rows) + QLatin1Char('\n') + films);
    for (const QString &fault : qAsConst(faults))
        terminal.logLine(fault);
    return faults.isEmpty();
}

int run(Terminal &terminal)
{
    QElapsedTimer clock;
    clock.start();
    const auto archive = Simulator::Archive::sample();
    Simulator::Server server(archive);
    QString errorText;
    if (!server.start(&errorText)) {
        terminal.logLine(
            QStringLiteral("ERROR the sample archive did not start: %1").arg(errorText));
        return 1;
    }
    writeApiBase(server.baseUrl());
    terminal.print(QStringLiteral("Sample archive at %1").arg(server.baseUrl()));

    const AcquisitionSettings settings = demoSettings(*archive);
    const auto directory = acquire(settings, terminal, &errorText);
    if (!directory) {
        terminal.logLine(QStringLiteral("ERROR the session did not start: %1").arg(errorText));
        return 1;
    }
    if (!report(SessionAudit::audit(*directory, *archive, settings), QDir(*directory), terminal)) {
        terminal.logLine(
            QStringLiteral("ERROR the session is not what the archive's pictures make."));
        return 1;
    }
    terminal.print(QStringLiteral("All counts are as the archive's pictures make them and every "
                                  "film decodes, after %1 s.")
                       .arg(clock.elapsed() / 1000));
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    // Fonts and pictures are needed, a screen is not.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    Terminal terminal;
    return run(terminal);
}
