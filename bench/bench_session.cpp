// bench_session --base URL --out DIR --frames N --width W
//
// All that a user's files may be made of: two sessions of three datasources across the two changes
// of the clock in southern Australia, with films, and in the first a region and its film. Nothing
// is measured; script/locales compares what this leaves behind under different systems. Prints
// what the system made of the number 1.5 and of the first session's start.

#include "acquisition/acquisitioncontroller.h"
#include "bench/benchrun.h"
#include "roi/roivideogenerator.h"

#include <QEventLoop>
#include <QGuiApplication>

#include <clocale>
#include <cstdio>

namespace {

/// The clock is changed at 16:00 UTC.
AcquisitionSettings settingsOf(const BenchRun &run, const QDate &day)
{
    AcquisitionSettings settings = run.settings();
    settings.endUtc =
        QDateTime(day, {16, 0}, Qt::UTC).addSecs(static_cast<qint64>(run.frames) * 30);
    settings.startUtc = settings.endUtc.addSecs(static_cast<qint64>(run.frames) * -60);
    settings.createVideos = true;
    settings.maxTimeErrorSeconds = 360;
    settings.sources << DataSource{2003, QStringLiteral("GOES-R SUVI 195"),
                                   QStringLiteral("GOES/SUVI/195")}
                     << DataSource{4, QStringLiteral("LASCO C2 Ünïcode"),
                                   QStringLiteral("SOHO/LASCO/C2/white-light")};
    return settings;
}

/// The directory of the session; empty when it did not run to its end.
QString acquire(const AcquisitionSettings &settings)
{
    AcquisitionController controller;
    QEventLoop loop;
    QString directory;
    QObject::connect(&controller, &AcquisitionController::logMessage, &loop,
                     [](const QString &line) { std::fprintf(stderr, "%s\n", qPrintable(line)); });
    QObject::connect(&controller, &AcquisitionController::finished, &loop,
                     [&](bool, const QString &sessionDirectory) {
                         directory = sessionDirectory;
                         loop.quit();
                     });
    QString errorText;
    if (controller.start(settings, &errorText))
        loop.exec();
    else
        std::fprintf(stderr, "%s\n", qPrintable(errorText));
    return directory;
}

bool filmRegion(const QString &directory)
{
    const Roi roi{QStringLiteral("Fleck Ä"), {0.25, 0.3, 0.5, 0.4}, true, 90};
    const auto session = RoiSession::load(directory);
    if (!session || !RoiSet::save({roi}, directory))
        return false;
    RoiVideoPlan plan;
    plan.sessionDirectory = session->directory;
    plan.sources = {{session->sources.first(), {}}};
    plan.rois = {{1, roi}};
    plan.intro = true;
    plan.introSeconds = 0.4;
    return RoiVideoGenerator().run(plan) == RoiVideoGenerator::Outcome::Completed;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const auto run = BenchRun::fromArguments(QGuiApplication::arguments());
    if (!run)
        return 2;
    run->writeConfiguration();
    const AcquisitionSettings autumn = settingsOf(*run, {2024, 4, 6});
    std::printf("%s 1%s5, %s\n", qPrintable(QLocale::system().name()),
                std::localeconv()->decimal_point,
                qPrintable(autumn.startUtc.toLocalTime().toString(Qt::ISODate)));
    const QString directory = acquire(autumn);
    return !directory.isEmpty() && filmRegion(directory) &&
                   !acquire(settingsOf(*run, {2024, 10, 5})).isEmpty()
               ? 0
               : 1;
}
