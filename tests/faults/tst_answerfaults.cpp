#include "tests/acquisition/acquisitionroad.h"
#include "tests/faults/sessioncheck.h"

#include <QJsonObject>
#include <QtTest>

#include <array>

using Simulator::FaultKind;
using Simulator::Operation;

namespace {

/// One program for each operation, since some faults take curl many seconds.
constexpr Operation operation = Operation::ORVIK_FAULTY_OPERATION;

/// What a request of the operation comes to when it fails, and when it does not.
constexpr auto index = size_t(operation) - 1;
const char *const fails = std::array{"fallback", "LOOKUP_ERROR", "DOWNLOAD_ERROR"}.at(index);
const char *const works = std::array{"quick-probe", "OK", "OK"}.at(index);

constexpr int probe = 1 << int(Operation::GetJPX);
constexpr int lookup = 1 << int(Operation::GetClosestImage);
constexpr int picture = 1 << int(Operation::DownloadImage);
constexpr int json = probe | lookup;
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
    {picture, "error object", FaultKind::JsonErrorBody, 0, 3, corrupt, retried},
    {picture, "empty line first", FaultKind::LeadingNewline, 0, 3, corrupt, retried},
    {picture, "half of it", FaultKind::TruncatedPng, 0, 3, corrupt, retried},
    {picture, "half of it at first", FaultKind::TruncatedPng, 0, 2, works, "retry 2/2"},
    {picture, "nothing", FaultKind::EmptyBody, 0, 1, fails, "file is missing or empty."},
    {picture, "clear block", FaultKind::TransparentBlock, 0, 1, works, "blank renderer block"},
};

} // namespace

Q_DECLARE_METATYPE(Row)

/// A session with a service that fails, in one operation, in all the ways it knows.
class TestAnswerFaults : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }
    void cleanup() { QCOMPARE(AcquisitionRoad::children(), QString()); }
    void faultyAnswer_data();
    void faultyAnswer();
};

void TestAnswerFaults::faultyAnswer_data()
{
    QTest::addColumn<Row>("row");

    for (const Row &row : rows) {
        if ((row.operations >> int(operation)) % 2 == 1)
            QTest::newRow(row.situation) << row;
    }
}

void TestAnswerFaults::faultyAnswer()
{
    QFETCH(Row, row);

    AcquisitionRoad road;
    road.server.addFault({operation, row.kind, row.value, 1, row.requests});
    if (row.kind == FaultKind::Hang)
        TestFolder::setKey(QStringLiteral("network/maxTransferSeconds"), 1);
    constexpr bool probed = operation == Operation::GetJPX;
    AcquisitionSettings settings =
        AcquisitionRoad::settings(120, {probed ? AcquisitionRoad::suvi() : AcquisitionRoad::aia()});
    settings.imageWidth = 512; // of which the service renders blocks
    settings.createVideos = false;
    QVERIFY(road.run(settings));

    const QString log = road.logLines().join(QLatin1Char('\n'));
    QVERIFY2(log.contains(QLatin1String(row.line)), qPrintable(log));
    const SessionCheck check = SessionCheck::of(road.sessionDirectory());
    QCOMPARE(check.faults + check.strays, QStringList());
    QCOMPARE(check.statuses.last(), QStringLiteral("OK")); // the session goes on
    QCOMPARE(probed ? road.describedSource(0).value(QLatin1String("preflightMode")).toString()
                    : check.statuses.first(),
             QLatin1String(row.outcome));
}

QTEST_MAIN(TestAnswerFaults)
#include "tst_answerfaults.moc"
