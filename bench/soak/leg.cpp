#include "bench/soak/leg.h"

#include "acquisition/acquisitioncontroller.h"
#include "base/runtimeconfig.h"
#include "bench/soak/faultschedule.h"

#include <QEventLoop>
#include <QSettings>

namespace {

/// What the log says, by the words that its lines begin with.
struct LogTally
{
    RequestTally requests;
    int accepted = 0;
    int duplicates = 0;
    int rejected = 0;
    int errors = 0;
    int decodeRetries = 0;

    void add(const QString &line);
};

void LogTally::add(const QString &line)
{
    const auto begins = [&line](const char *word) { return line.startsWith(QLatin1String(word)); };
    if (begins("curl: "))
        requests.add(line);
    accepted += begins("OK ") ? 1 : 0;
    duplicates += begins("DUPLICATE ") ? 1 : 0;
    rejected += begins("REJECT ") ? 1 : 0;
    errors += begins("ERROR ") ? 1 : 0;
    decodeRetries +=
        begins("WARNING ") && line.contains(QLatin1String("cannot be decoded")) ? 1 : 0;
}

FaultSchedule scheduleFor(const LegOrder &order)
{
    FaultSchedule schedule(order.faultyUpTo);
    if (order.stopAt == StopAt::Lookup)
        schedule.hang("GetClosestImage", order.stopNumber, Effect::LookupError);
    if (order.stopAt == StopAt::Download)
        schedule.hang("DownloadImage", order.stopNumber, Effect::DownloadError);
    return schedule;
}

bool isTimeToStop(const LegOrder &order, const RequestTally &service, const QString &logLine)
{
    switch (order.stopAt) {
    case StopAt::End:
        return false;
    case StopAt::Frame:
        return service.lookups >= order.stopNumber && logLine.startsWith(QLatin1String("OK "));
    case StopAt::Lookup:
        return service.lookups >= order.stopNumber;
    case StopAt::Download:
        return service.downloads >= order.stopNumber;
    }
    return false;
}

void writeApiBase(const QString &baseUrl)
{
    QSettings config(RuntimeConfig::configFilePath(), QSettings::IniFormat);
    config.setIniCodec("UTF-8");
    config.setValue(QStringLiteral("network/apiBase"), baseUrl);
}

/// Each number as told by two who do not know of each other.
QStringList disagreements(const LegOrder &order, const FaultSchedule &schedule,
                          const LegResult &leg, const LogTally &log)
{
    const int lookups = leg.service.lookups;
    const int downloads = leg.service.downloads;
    const auto lookupFaults = [&](Effect effect) {
        return schedule.count("GetClosestImage", effect, lookups);
    };
    const auto downloadFaults = [&](Effect effect) {
        return schedule.count("DownloadImage", effect, downloads);
    };
    const StatusTally &rows = leg.files.manifest;

    QStringList faults;
    const auto agree = [&faults](const char *what, int one, int other) {
        if (one != other)
            faults << QStringLiteral("%1: %2 and %3").arg(QLatin1String(what)).arg(one).arg(other);
    };
    agree("probes of service and log", leg.service.probes, log.requests.probes);
    agree("lookups of service and log", lookups - lookupFaults(Effect::CurlRetry),
          log.requests.lookups);
    agree("downloads of service and log", downloads - downloadFaults(Effect::CurlRetry),
          log.requests.downloads);
    agree("lookups of log and rows", log.requests.lookups, rows.rows);
    agree("downloads of log and rows", log.requests.downloads,
          rows.accepted + rows.downloadErrors + log.decodeRetries);
    agree("faults and failed lookups", lookupFaults(Effect::LookupError), rows.lookupErrors);
    agree("faults and failed downloads", downloadFaults(Effect::DownloadError),
          rows.downloadErrors);
    agree("faults and pictures to be had again", downloadFaults(Effect::DecodeRetry),
          log.decodeRetries);
    agree("frames of log and rows", log.accepted, rows.accepted);
    agree("duplicates of log and rows", log.duplicates, rows.duplicates);
    agree("rejections of log and rows", log.rejected, rows.rejected);
    agree("errors of log and rows", log.errors, rows.lookupErrors + rows.downloadErrors);
    agree("canceled and stopped", leg.files.isCanceled, order.stopAt != StopAt::End);
    return faults + leg.files.faults;
}

} // namespace

LegResult LegResult::run(AcquisitionController &controller, const LegOrder &order)
{
    LegResult leg;
    const FaultSchedule schedule = scheduleFor(order);
    WatchedService service;
    if (!service.start(schedule.arguments())) {
        leg.faults << QStringLiteral("the service does not start");
        return leg;
    }
    writeApiBase(service.baseUrl());

    LogTally log;
    QString directory;
    QEventLoop loop;
    const auto stopInTime = [&](const QString &logLine) {
        if (isTimeToStop(order, service.tally(), logLine))
            controller.stop(); // once: afterwards it does not run
    };
    QObject::connect(&controller, &AcquisitionController::logMessage, &loop,
                     [&](const QString &line) {
                         log.add(line);
                         stopInTime(line);
                     });
    QObject::connect(&service, &WatchedService::requested, &loop, [&] { stopInTime({}); });
    QObject::connect(&controller, &AcquisitionController::finished, &loop,
                     [&](bool, const QString &sessionDirectory) {
                         directory = sessionDirectory;
                         loop.quit();
                     });
    QString errorText;
    if (!controller.start(order.settings, &errorText)) {
        leg.faults << errorText;
        return leg;
    }
    loop.exec();
    service.stop();

    leg.service = service.tally();
    leg.log = log.requests;
    leg.files = SessionEvidence::of(directory);
    leg.faults = disagreements(order, schedule, leg, log);
    return leg;
}
