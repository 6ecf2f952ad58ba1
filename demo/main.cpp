// One whole acquisition in the terminal, against the sample archive of this machine, or with
// --public a small one against the public archive; --public=BASE asks another one, as a mirror.

#include "base/runtimeconfig.h"
#include "base/texttable.h"
#include "demo/publicarchive.h"
#include "demo/sessionaudit.h"
#include "demo/sessionrun.h"
#include "demo/terminal.h"
#include "simulator/archive/archive.h"
#include "simulator/service/server.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>

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
    for (const QString &fault : std::as_const(faults))
        terminal.logLine(fault);
    return faults.isEmpty();
}

/// Acquires, reports, and says whether all is as it must be; @p expected is of each datasource.
bool perform(const AcquisitionSettings &settings, const QVector<RequestCounts> &expected,
             Terminal &terminal)
{
    QElapsedTimer clock;
    clock.start();
    QString errorText;
    const auto directory = SessionRun::acquire(settings, terminal, &errorText);
    if (!directory) {
        terminal.logLine(QStringLiteral("ERROR the session did not start: %1").arg(errorText));
        return false;
    }
    if (!report(SessionAudit::audit(*directory, settings, expected), QDir(*directory), terminal)) {
        terminal.logLine(
            QStringLiteral("ERROR the session is not what the archive's pictures make."));
        return false;
    }
    terminal.print(QStringLiteral("All counts are as the archive's pictures make them and every "
                                  "film decodes, after %1 s.")
                       .arg(clock.elapsed() / 1000));
    return true;
}

bool showSample(Terminal &terminal)
{
    const auto archive = Simulator::Archive::sample();
    Simulator::Server server(archive);
    QString errorText;
    if (!server.start(&errorText)) {
        terminal.logLine(
            QStringLiteral("ERROR the sample archive did not start: %1").arg(errorText));
        return false;
    }
    SessionRun::configure(QStringLiteral("network/apiBase"), server.baseUrl());
    terminal.print(QStringLiteral("Sample archive at %1").arg(server.baseUrl()));

    const AcquisitionSettings settings = demoSettings(*archive);
    QVector<RequestCounts> expected;
    for (const DataSource &source : settings.sources)
        expected << Expectation::counts(*archive, source, settings);
    return perform(settings, expected, terminal);
}

/// @p baseUrl is empty for the public archive itself.
bool showPublic(const QString &baseUrl, Terminal &terminal)
{
    if (!baseUrl.isEmpty())
        SessionRun::configure(QStringLiteral("network/apiBase"), baseUrl);
    QString errorText;
    if (!PublicArchive::configure(&errorText) || !PublicArchive::answers(&errorText)) {
        terminal.logLine(QStringLiteral("ERROR ") + errorText);
        return false;
    }
    terminal.print(
        QStringLiteral("Archive at %1, a request a second").arg(RuntimeConfig::apiBase()));
    const AcquisitionSettings settings = PublicArchive::settings();
    constexpr int frames = 3;
    const RequestCounts each{frames, frames};
    return perform(settings, QVector<RequestCounts>(settings.sources.size(), each), terminal);
}

} // namespace

int main(int argc, char **argv)
{
    // Fonts and pictures are needed, a screen is not.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    Terminal terminal;
    const QString argument = QGuiApplication::arguments().value(1);
    const QString ofPublic = QStringLiteral("--public");
    if (argument == ofPublic || argument.startsWith(ofPublic + QLatin1Char('=')))
        return showPublic(argument.mid(ofPublic.size() + 1), terminal) ? 0 : 1;
    if (!argument.isEmpty()) {
        terminal.print(QStringLiteral("usage: orvik-demo [--public[=BASE]]"));
        return 2;
    }
    return showSample(terminal) ? 0 : 1;
}
