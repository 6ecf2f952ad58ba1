#include "sessiontool/toolcommands.h"

#include "base/helperprograms.h"
#include "base/jsonfile.h"
#include "base/runtimeconfig.h"
#include "base/terminationsignals.h"
#include "output/sessionfiles.h"
#include "roi/filminglock.h"
#include "sessiontool/reportjson.h"
#include "sessiontool/reporttext.h"
#include "sessiontool/sessionfilms.h"
#include "sessiontool/sessionrecovery.h"
#include "sessiontool/sessionreport.h"
#include "sessiontool/sessionverifier.h"
#include "sessiontool/toolconsole.h"
#include "sessiontool/toolorder.h"

#include <QFileInfo>
#include <QJsonDocument>

namespace {

ToolEnd unusable(const QString &sentence, ToolConsole &console)
{
    console.complain(sentence);
    return {ExitCode::Unusable};
}

ToolEnd report(const QDir &session, const ToolOrder &order, ToolConsole &console)
{
    QString reason;
    const std::optional<SessionReport> report = SessionReports::make(session, &reason);
    if (!report)
        return unusable(reason, console);
    if (order.json)
        console.printBytes(QJsonDocument(ReportJson::toJson(*report)).toJson());
    else
        ReportText::print(*report, order.frames, console);
    return {report->findings.isEmpty() ? ExitCode::Fine : ExitCode::Findings};
}

ToolEnd verify(const QDir &session, const ToolOrder &order, ToolConsole &console)
{
    SessionVerifier verifier(
        session, order.decode, [&console](const QString &finding) { console.print(finding); },
        [&console](qint64 rows, qint64 ofRows) {
            console.setProgress(QStringLiteral("row %1 of %2").arg(rows).arg(ofRows));
        });
    QString reason;
    if (!verifier.run(&reason))
        return unusable(reason, console);
    console.print(QStringLiteral("%1, %2 and %3 found whole: %4")
                      .arg(ToolConsole::counted(verifier.rows(), "request"),
                           ToolConsole::counted(verifier.pictures(), "picture"),
                           ToolConsole::counted(verifier.films(), "film"),
                           verifier.findings() == 0
                               ? QStringLiteral("nothing is wrong")
                               : ToolConsole::counted(verifier.findings(), "finding")));
    return {verifier.findings() == 0 ? ExitCode::Fine : ExitCode::Findings};
}

ToolEnd recover(const QDir &session, ToolConsole &console)
{
    if (StoredDescriptors::isThere(session))
        return unusable(QStringLiteral("session.json is there already; nothing was written. If it "
                                       "is damaged, give it another name first."),
                        console);
    QString reason;
    const std::optional<SessionLedger> ledger = SessionLedgers::read(session, &reason);
    if (!ledger)
        return unusable(reason, console);
    for (const QString &remark : ledger->remarks)
        console.print(remark);
    const std::optional<RecoveredDescriptor> recovered =
        SessionRecovery::describe(session, *ledger);
    if (!recovered) {
        console.print(QStringLiteral("manifest.csv names no datasource; nothing was written."));
        return {ExitCode::Findings};
    }
    const QString path = session.filePath(SessionFiles::descriptor());
    if (JsonFile::save(path, recovered->json) != JsonFile::SaveResult::Saved)
        return unusable(QStringLiteral("cannot write %1").arg(QDir::toNativeSeparators(path)),
                        console);
    console.print(QStringLiteral("session.json written: %1, %2")
                      .arg(ToolConsole::counted(ledger->sources.size(), "datasource"),
                           ToolConsole::counted(ledger->acceptedFrames(), "frame")));
    for (const QString &origin : recovered->origins)
        console.print(QStringLiteral("  ") + origin);
    return {};
}

/// How to make the films; nothing when the values in the session are not allowed.
std::optional<FilmWishes> wishesOf(const ToolOrder &order, const StoredDescriptor &descriptor)
{
    FilmWishes wishes;
    wishes.fps = order.fps.value_or(descriptor.videoFps);
    wishes.crf = order.crf.value_or(descriptor.videoCrf);
    wishes.replaceBroken = order.replaceBroken;
    const bool isPossible = ToolOrders::isFps(wishes.fps) && ToolOrders::isCrf(wishes.crf);
    return isPossible ? std::make_optional(wishes) : std::nullopt;
}

ToolEnd encode(const QDir &session, const ToolOrder &order, ToolConsole &console)
{
    QString reason;
    const std::optional<StoredDescriptor> descriptor = StoredDescriptors::load(session, &reason);
    if (!descriptor)
        return unusable(reason, console);
    const std::optional<SessionLedger> ledger = SessionLedgers::read(session, &reason);
    if (!ledger)
        return unusable(reason, console);
    const std::optional<FilmWishes> wishes = wishesOf(order, *descriptor);
    if (!wishes)
        return unusable(QStringLiteral("session.json asks for %1 pictures per second and CRF %2. "
                                       "Give others with --fps and --crf.")
                            .arg(descriptor->videoFps)
                            .arg(descriptor->videoCrf),
                        console);
    HelperPrograms::linkMissing();
    if (!RoiEncoder::isPresent(RuntimeConfig::ffmpegPath(), &reason))
        return unusable(QStringLiteral("%1. Set paths/ffmpeg in %2.")
                            .arg(reason, RuntimeConfig::configFilePath()),
                        console);
    const FilmingLock lock(session.absolutePath());
    if (!lock.isFree(&reason))
        return unusable(reason.simplified(), console);
    SessionFilms films(session, *ledger, *wishes, console);
    const TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::received, &films, &SessionFilms::interrupt);
    const ExitCode exitCode = films.make(descriptor->sources);
    return {exitCode, films.interruption()};
}

} // namespace

ToolEnd ToolCommands::run(const ToolOrder &order, ToolConsole &console)
{
    using Command = ToolOrder::Command;
    if (!QFileInfo(order.directory).isDir())
        return unusable(QStringLiteral("\"%1\" is no folder.").arg(order.directory), console);
    const QDir session(QDir::cleanPath(QFileInfo(order.directory).absoluteFilePath()));
    switch (order.command) {
    case Command::Report:
        return report(session, order, console);
    case Command::Verify:
        return verify(session, order, console);
    case Command::Recover:
        return recover(session, console);
    case Command::Encode:
        break;
    }
    return encode(session, order, console);
}
