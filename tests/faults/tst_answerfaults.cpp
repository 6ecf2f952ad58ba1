#include "client/helioviewerclient.h"
#include "tests/acquisition/acquisitionroad.h"
#include "tests/faults/sessioncheck.h"

#include <QJsonObject>
#include <QtTest>

#include <array>

Q_DECLARE_METATYPE(Simulator::Fault)

using Simulator::FaultKind;
using Simulator::Operation;

namespace {

/// One program for each operation, since some faults take curl many seconds.
constexpr Operation operation = Operation::ORVIK_FAULTY_OPERATION;

/// What a request of the operation comes to when it fails, and when it does not.
constexpr auto index = size_t(operation);
const char *const fails =
    std::array{"error", "fallback", "LOOKUP_ERROR", "DOWNLOAD_ERROR"}.at(index);
const char *const works = std::array{"catalog", "quick-probe", "OK", "OK"}.at(index);

constexpr int catalog = 1 << int(Operation::GetDataSources);
constexpr int probe = 1 << int(Operation::GetJPX);
constexpr int lookup = 1 << int(Operation::GetClosestImage);
constexpr int picture = 1 << int(Operation::DownloadImage);
constexpr int json = catalog | probe | lookup;
constexpr int all = json | picture;

const char *const corrupt = "CORRUPT_IMAGE";
const char *const retried = "is corrupt or incomplete after 2 retries";
const char *const noImage = "Response does not contain a valid image id/date.";

struct Row
{
    int operations;
    const char *situation;
    FaultKind kind;
    int value;
    int requests; // that it befalls: as many as it takes until curl or the engine gives up
    const char *outcome;
    const char *line; // occurs in the log
};

const Row rows[] = {
    {all, "bad request", FaultKind::Status, 400, 1, fails, "returned error: 400"},
    {all, "server error", FaultKind::Status, 500, 3, fails, "returned error: 500"},
    {all, "server error once", FaultKind::Status, 502, 1, works, ""},
    {all, "never answered", FaultKind::Hang, 0, 3, fails, "curl: (28)"},
    {all, "hung up at once", FaultKind::Refuse, 0, 1, fails, "curl: (52)"},
    {all, "reset", FaultKind::ResetInBody, 0, 1, fails, "curl: (56)"},
    {all, "cut off", FaultKind::ResetInBody, 1, 1, fails, "curl: (18)"},
    {all, "slow", FaultKind::Delay, 300, 1, works, ""},
    {json, "web page", FaultKind::HtmlBody, 0, 1, fails, "Invalid JSON: illegal value"},
    {json, "nothing", FaultKind::EmptyBody, 0, 1, fails, "Invalid JSON: illegal value"},
    {json, "half of it", FaultKind::CutOffJson, 0, 1, fails, "Invalid JSON: unterminated"},
    {json, "array", FaultKind::JsonArray, 0, 1, fails, "Invalid JSON: no error occurred"},
    {json, "empty line first", FaultKind::LeadingNewline, 0, 1, works, ""},
    {catalog, "error object", FaultKind::JsonErrorBody, 0, 1, works, ""},
    {probe, "error object", FaultKind::JsonErrorBody, 0, 1, works, "no frames returned"},
    {lookup, "error object", FaultKind::JsonErrorBody, 0, 1, fails, noImage},
    {lookup, "id 0", FaultKind::WrongId, 0, 1, fails, noImage},
    {lookup, "id in words", FaultKind::WrongId, 1, 1, fails, noImage},
    {lookup, "id null", FaultKind::WrongId, 2, 1, fails, noImage},
    {lookup, "no id", FaultKind::WrongId, 3, 1, fails, noImage},
    {lookup, "id as a number", FaultKind::NumberId, 0, 1, works, ""},
    {lookup, "numbers as texts", FaultKind::NumericStrings, 0, 1, works, ""},
    {lookup, "no solar radius", FaultKind::NoRsun, 0, 1, works, ""},
    {lookup, "tolerance just met, late", FaultKind::StaleDate, 30, 1, works, "delta +30 s"},
    {lookup, "tolerance just met, early", FaultKind::StaleDate, -30, 1, works, "delta -30 s"},
    {lookup, "a second too early", FaultKind::StaleDate, -31, 1, "REJECTED_TIME", "delta -31 s"},
    {lookup, "an hour late", FaultKind::StaleDate, 3600, 1, "REJECTED_TIME", "delta +3600 s"},
    {picture, "web page", FaultKind::HtmlBody, 0, 3, corrupt, retried},
    {picture, "error object", FaultKind::JsonErrorBody, 0, 3, corrupt, retried},
    {picture, "array", FaultKind::JsonArray, 0, 3, corrupt, retried},
    {picture, "empty line first", FaultKind::LeadingNewline, 0, 3, corrupt, retried},
    {picture, "half of it", FaultKind::TruncatedPng, 0, 3, corrupt, retried},
    {picture, "half of it at first", FaultKind::TruncatedPng, 0, 2, works, "retry 2/2"},
    {picture, "nothing", FaultKind::EmptyBody, 0, 1, fails, "file is missing or empty."},
    {picture, "black block", FaultKind::BlackBlock, 0, 1, works, "blank renderer block"},
    {picture, "clear block", FaultKind::TransparentBlock, 0, 1, works, "blank renderer block"},
};

} // namespace

/// A session with a service that fails, in one operation, in all the ways it knows.
class TestAnswerFaults : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }
    void cleanup() { QCOMPARE(AcquisitionRoad::children(), QString()); }
    void faultyAnswer_data();
    void faultyAnswer();

private:
    QString catalogOutcome(QString *log);
};

void TestAnswerFaults::faultyAnswer_data()
{
    QTest::addColumn<Simulator::Fault>("fault");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QString>("line");

    for (const Row &row : rows) {
        if ((row.operations >> int(operation)) % 2 == 1)
            QTest::newRow(row.situation)
                << Simulator::Fault{operation, row.kind, row.value, 1, row.requests}
                << QString::fromLatin1(row.outcome) << QString::fromLatin1(row.line);
    }
}

void TestAnswerFaults::faultyAnswer()
{
    QFETCH(Simulator::Fault, fault);
    QFETCH(QString, line);

    AcquisitionRoad road;
    road.server.addFault(fault);
    if (fault.kind == FaultKind::Hang)
        TestFolder::setKey(QStringLiteral("network/maxTransferSeconds"), 1);
    QString log;
    if (operation == Operation::GetDataSources) {
        QTEST(catalogOutcome(&log), "outcome");
        QVERIFY2(log.contains(line), qPrintable(log));
        return;
    }

    const bool probed = operation == Operation::GetJPX;
    AcquisitionSettings settings =
        AcquisitionRoad::settings(120, {probed ? AcquisitionRoad::suvi() : AcquisitionRoad::aia()});
    settings.imageWidth = 512; // of which the service renders blocks
    settings.createVideos = false;
    QVERIFY(road.run(settings));
    log = road.logLines().join(QLatin1Char('\n'));
    QVERIFY2(log.contains(line), qPrintable(log));
    const SessionCheck check = SessionCheck::of(road.sessionDirectory());
    QCOMPARE(check.faults + check.strays, QStringList());
    QCOMPARE(check.statuses.last(), QStringLiteral("OK")); // the session goes on
    QTEST(probed ? road.describedSource(0).value(QLatin1String("preflightMode")).toString()
                 : check.statuses.first(),
          "outcome");
}

/// The catalog is asked for by the client alone.
QString TestAnswerFaults::catalogOutcome(QString *log)
{
    HelioviewerClient client;
    QStringList outcomes;
    connect(&client, &HelioviewerClient::catalogReceived, this,
            [&outcomes] { outcomes += QStringLiteral("catalog"); });
    connect(&client, &HelioviewerClient::requestError, this,
            [&outcomes, log](const QString &, const QString &message) {
                outcomes += QStringLiteral("error");
                *log = message;
            });
    client.getDataSources();
    while (client.isBusy())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return outcomes.join(QLatin1Char(' '));
}

QTEST_MAIN(TestAnswerFaults)
#include "tst_answerfaults.moc"
