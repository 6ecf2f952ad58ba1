#include "tests/acquisition/acquisitionroad.h"

#include "base/jsonfile.h"
#include "output/csvfields.h"
#include "simulator/archive/archive.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

namespace {

Simulator::ArchiveSource regular(const DataSource &source, const QString &start, int spacingSeconds)
{
    Simulator::ArchiveSource made;
    made.path = source.path;
    made.nickname = source.nickname;
    made.sourceId = source.sourceId;
    made.start = start;
    made.end = QStringLiteral("2024-05-02 00:00:00");
    made.spacingSeconds = spacingSeconds;
    return made;
}

std::shared_ptr<const Simulator::Archive> archive()
{
    return std::make_shared<const Simulator::Archive>(QVector<Simulator::ArchiveSource>{
        regular(AcquisitionRoad::aia(), QStringLiteral("2024-05-01 00:00:00"), 60),
        regular(AcquisitionRoad::suvi(), QStringLiteral("2024-05-01 00:00:10"), 120),
        regular(AcquisitionRoad::lasco(), QStringLiteral("2024-05-01 00:00:20"), 90)});
}

QString withoutQuery(const QString &line)
{
    static const QRegularExpression endpoint(QStringLiteral("^curl: .*/(\\w+)/.*$"));
    return QString(line).replace(endpoint, QStringLiteral("curl: \\1"));
}

} // namespace

AcquisitionRoad::AcquisitionRoad() : server(archive()), controller(new AcquisitionController)
{
    if (!server.start())
        qFatal("cannot start the service");
    TestFolder::setKey(QStringLiteral("network/apiBase"), server.baseUrl());

    using Controller = AcquisitionController;
    const Controller *sender = controller.get();
    QObject::connect(sender, &Controller::logMessage, sender,
                     [this](const QString &text) { note(withoutQuery(text)); });
    QObject::connect(sender, &Controller::stateChanged, sender,
                     [this](const QString &text) { note(QStringLiteral("[state] ") + text); });
    QObject::connect(sender, &Controller::progressChanged, sender, [this](int value, int maximum) {
        note(QStringLiteral("[progress] %1/%2").arg(value).arg(maximum));
    });
    QObject::connect(sender, &Controller::sourceTimingAnalyzed, sender,
                     [this](int sourceId, int frames, int median, int min, int max) {
                         note(QStringLiteral("[timing] %1: %2, %3 %4-%5")
                                  .arg(sourceId)
                                  .arg(frames)
                                  .arg(median)
                                  .arg(min)
                                  .arg(max));
                     });
    QObject::connect(sender, &Controller::previewReady, sender,
                     [this](const QString &name, const QString &file, const QDateTime &requested,
                            const QDateTime &actual, qint64 delta) {
                         const QString clock = QStringLiteral("m:ss");
                         note(QStringLiteral("[preview] %1 %2 %3 %4 %5")
                                  .arg(name, file, requested.toString(clock),
                                       actual.toString(clock), QString::number(delta)));
                     });
    QObject::connect(
        sender, &Controller::finished, sender, [this](bool canceled, const QString &directory) {
            m_sessionDirectory = directory;
            note(QStringLiteral("[finished] ") +
                 (canceled ? QStringLiteral("canceled") : QStringLiteral("completed")));
        });
}

DataSource AcquisitionRoad::aia()
{
    return {10, QStringLiteral("AIA 171"), QStringLiteral("SDO/AIA/171")};
}

DataSource AcquisitionRoad::suvi()
{
    return {2003, QStringLiteral("GOES-R SUVI 195"), QStringLiteral("GOES/SUVI/195")};
}

DataSource AcquisitionRoad::lasco()
{
    return {4, QStringLiteral("LASCO C2"), QStringLiteral("SOHO/LASCO/C2/white-light")};
}

AcquisitionSettings AcquisitionRoad::settings(int seconds, const QVector<DataSource> &sources)
{
    AcquisitionSettings settings;
    settings.startUtc = QDateTime(QDate(2024, 5, 1), QTime(0, 0), Qt::UTC);
    settings.endUtc = settings.startUtc.addSecs(seconds);
    settings.imageWidth = 256;
    settings.sources = sources;
    return settings;
}

bool AcquisitionRoad::run(const AcquisitionSettings &settings)
{
    events.clear();
    return controller->start(settings) && waitForEnd();
}

bool AcquisitionRoad::waitForEnd()
{
    constexpr int longestSessionMs = 60000;
    QSignalSpy finished(controller.get(), &AcquisitionController::finished);
    return !controller->isRunning() || finished.wait(longestSessionMs);
}

QStringList AcquisitionRoad::logLines() const
{
    static const QRegularExpression logLine(QStringLiteral("^(?!\\[|curl: )"));
    return events.filter(logLine);
}

int AcquisitionRoad::count(const char *beginning) const
{
    return int(std::count_if(events.cbegin(), events.cend(), [beginning](const QString &event) {
        return event.startsWith(QLatin1String(beginning));
    }));
}

QString AcquisitionRoad::sessionFile(const QString &name) const
{
    return QDir(m_sessionDirectory).filePath(name);
}

QString AcquisitionRoad::filesIn(const QString &folder) const
{
    const QDir dir(sessionFile(folder));
    return dir.entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name)
        .join(QLatin1Char(' '));
}

QString AcquisitionRoad::column(const char *name) const
{
    QFile file(sessionFile(QStringLiteral("manifest.csv")));
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("no manifest");
    const int index = file.readLine().trimmed().split(',').indexOf(name);
    QStringList values;
    CsvFields fields;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        fields.split(line);
        values += fields.at(index).toString();
    }
    return values.join(QLatin1Char(' '));
}

QJsonObject AcquisitionRoad::descriptor() const
{
    return JsonFile::load(sessionFile(QStringLiteral("session.json"))).value_or(QJsonObject());
}

QJsonObject AcquisitionRoad::describedSource(int index) const
{
    return descriptor().value(QLatin1String("sources")).toArray().at(index).toObject();
}

QString AcquisitionRoad::children()
{
    QFile file(
        QStringLiteral("/proc/self/task/%1/children").arg(QCoreApplication::applicationPid()));
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll())
                                          : QStringLiteral("this system does not list them");
}

void AcquisitionRoad::note(const QString &event)
{
    events += event;
    if (onEvent)
        onEvent(event);
}
