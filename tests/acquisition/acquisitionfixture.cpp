#include "tests/acquisition/acquisitionfixture.h"

#include "tests/support/literals.h"

#include <QtTest>

namespace {

using Controller = AcquisitionController;

std::shared_ptr<const Simulator::Archive> archive()
{
    return std::make_shared<const Simulator::Archive>(QVector<Simulator::ArchiveSource>{
        AcquisitionFixture::regular(AcquisitionFixture::aia(), "2024-05-01 00:00:00", 60),
        AcquisitionFixture::regular(AcquisitionFixture::suvi(), "2024-05-01 00:00:10", 120)});
}

QString withoutQuery(const QString &line)
{
    static const QRegularExpression endpoint("^curl: .*/(\\w+)/.*$"_s);
    return QString(line).replace(endpoint, "curl: \\1"_s);
}

} // namespace

void SessionEvents::listenTo(const AcquisitionController *sender)
{
    const auto listen = [sender](auto signal, auto slot) {
        QObject::connect(sender, signal, sender, slot);
    };
    listen(&Controller::logMessage, [this](const QString &text) { note(withoutQuery(text)); });
    listen(&Controller::stateChanged, [this](const QString &text) { note("[state] "_s + text); });
    listen(&Controller::progressChanged, [this](int value, int maximum) {
        note(QString::asprintf("[progress] %d/%d", value, maximum));
    });
    listen(&Controller::sourceTimingAnalyzed, [this](int sourceId, int frames, int median, int min,
                                                     int max) {
        note(QString::asprintf("[timing] %d: %d, %d %d-%d", sourceId, frames, median, min, max));
    });
    listen(&Controller::previewReady, [this](const QString &name, const QString &file,
                                             const QDateTime &requested, const QDateTime &actual,
                                             qint64 delta) {
        const QString clock = "m:ss"_s;
        note("[preview] %1 %2 %3 %4 %5"_s.arg(name, file, requested.toString(clock),
                                              actual.toString(clock), QString::number(delta)));
    });
    listen(&Controller::finished, [this](bool canceled, const QString &directory) {
        sessionDirectory = directory;
        note(canceled ? "[finished] canceled"_s : "[finished] completed"_s);
    });
}

QStringList SessionEvents::logLines() const
{
    static const QRegularExpression logLine("^(?!\\[|curl: )"_s);
    return events.filter(logLine);
}

int SessionEvents::count(const char *beginning) const
{
    return static_cast<int>(
        std::count_if(events.cbegin(), events.cend(), [beginning](const QString &event) {
            return event.startsWith(QLatin1String(beginning));
        }));
}

void SessionEvents::note(const QString &event)
{
    events += event;
    if (onEvent)
        onEvent(event);
}

AcquisitionFixture::AcquisitionFixture() : server(archive()), controller(new AcquisitionController)
{
    if (!server.start())
        qFatal("cannot start the service");
    TestFolder::setKey("network/apiBase"_s, server.baseUrl());
    listenTo(controller.get());
}

Simulator::ArchiveSource AcquisitionFixture::regular(const DataSource &source, const char *start,
                                                     int spacingSeconds)
{
    Simulator::ArchiveSource made;
    made.path = source.path;
    made.nickname = source.nickname;
    made.sourceId = source.sourceId;
    made.start = QLatin1String(start);
    made.end = "2024-05-02 00:00:00"_s;
    made.spacingSeconds = spacingSeconds;
    return made;
}

AcquisitionSettings AcquisitionFixture::settings(int seconds, const QVector<DataSource> &sources)
{
    AcquisitionSettings settings;
    settings.startUtc = QDateTime(QDate(2024, 5, 1), QTime(0, 0), Qt::UTC);
    settings.endUtc = settings.startUtc.addSecs(seconds);
    settings.imageWidth = 256;
    settings.sources = sources;
    return settings;
}

bool AcquisitionFixture::run(const AcquisitionSettings &settings)
{
    constexpr int longestSessionMs = 60000;
    events.clear();
    QSignalSpy finished(controller.get(), &AcquisitionController::finished);
    return controller->start(settings) && (!finished.isEmpty() || finished.wait(longestSessionMs));
}

QString AcquisitionFixture::children()
{
    QFile file("/proc/self/task/%1/children"_s.arg(QCoreApplication::applicationPid()));
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll())
                                          : "this system does not list them"_s;
}
