#include "simulator/archive/archive.h"
#include "simulator/service/endpoints.h"
#include "simulator/service/faultyanswers.h"
#include "simulator/service/picturestore.h"

#include <QTest>
#include <QUrlQuery>

using namespace Simulator;

Q_DECLARE_METATYPE(Simulator::Operation)

namespace {

ArchiveSource source(const char *path, const char *nickname, int sourceId)
{
    ArchiveSource made;
    made.path = QString::fromLatin1(path);
    made.nickname = QString::fromLatin1(nickname);
    made.sourceId = sourceId;
    made.rsunPx = 1587.151;
    made.start = QStringLiteral("2010-06-02 00:05:36");
    made.end = QStringLiteral("2010-06-02 00:06:48");
    return made;
}

std::shared_ptr<const Archive> smallArchive()
{
    ArchiveSource empty = source("Hinode/XRT/C_poly/Any", "XRT C_poly/Any", 10008);
    empty.start.clear();
    empty.end.clear();
    empty.levelLabels =
        QStringList{QStringLiteral("Observatory"), QStringLiteral("Instrument"),
                    QStringLiteral("Filter Wheel 1"), QStringLiteral("Filter Wheel 2")};
    ArchiveSource trace = source("TRACE/171", "TRACE 171", 75);
    trace.widthPx = 300;
    trace.heightPx = 305;
    return std::make_shared<const Archive>(
        QVector<ArchiveSource>{source("SDO/AIA/171", "AIA 171", 0), empty, trace});
}

Query queryOf(const QString &text)
{
    Query query;
    const auto items = QUrlQuery(text).queryItems(QUrl::FullyDecoded);
    for (const auto &item : items)
        query.insert(item.first, item.second);
    return query;
}

Answer answerTo(Operation operation, const QString &query, const QVector<Fault> &faults = {})
{
    const auto archive = smallArchive();
    PictureStore pictures(archive);
    return answerOf(operation, *archive, pictures, queryOf(query), faults);
}

const QString closestQuery = QStringLiteral("date=2010-06-02T00:06:00Z&sourceId=0");
const QString jpxQuery =
    QStringLiteral("startTime=2010-06-02T00:00:00Z&endTime=2010-06-02T00:10:00Z&sourceId=0"
                   "&linked=true&jpip=true&verbose=true&cadence=60");

} // namespace

class TestSimulatorAnswers : public QObject
{
    Q_OBJECT

private slots:
    void bodiesAreWrittenByteForByte_data();
    void bodiesAreWrittenByteForByte();
    void errorsHaveTheirStatusAndBody();
    void closestImageCanDepart();
};

void TestSimulatorAnswers::bodiesAreWrittenByteForByte_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("query");
    QTest::addColumn<QByteArray>("body");

    QTest::newRow("datasources: order kept, null dates, id 0, two to four levels")
        << Operation::GetDataSources << QString()
        << QByteArray(
               R"({"SDO":{"AIA":{"171":{"sourceId":0,"nickname":"AIA 171","layeringOrder":1,)"
               R"("start":"2010-06-02 00:05:36","end":"2010-06-02 00:06:48","uiLabels":[)"
               R"({"label":"Observatory","name":"SDO"},{"label":"Instrument","name":"AIA"},)"
               R"({"label":"Measurement","name":"171"}]}}},"Hinode":{"XRT":{"C_poly":{"Any":{)"
               R"("sourceId":10008,"nickname":"XRT C_poly\/Any","layeringOrder":1,"start":null,)"
               R"("end":null,"uiLabels":[{"label":"Observatory","name":"Hinode"},)"
               R"({"label":"Instrument","name":"XRT"},{"label":"Filter Wheel 1","name":"C_poly"},)"
               R"({"label":"Filter Wheel 2","name":"Any"}]}}}},"TRACE":{"171":{"sourceId":75,)"
               R"("nickname":"TRACE 171","layeringOrder":1,"start":"2010-06-02 00:05:36",)"
               R"("end":"2010-06-02 00:06:48","uiLabels":[{"label":"Observatory","name":"TRACE"},)"
               R"({"label":"Measurement","name":"171"}]}}})");
    QTest::newRow("frame index")
        << Operation::GetJPX << jpxQuery
        << QByteArray(
               R"({"message":null,"uri":"jpips:\/\/helioviewer.org:8090\/movies\/SDO_AIA_171_)"
               R"(F2010-06-02T00.00.00Z_T2010-06-02T00.10.00ZB60L.jpx",)"
               R"("frames":[1275437136,1275437208]})");
    QTest::newRow("frame index without frames")
        << Operation::GetJPX
        << QStringLiteral("startTime=2011-06-02T00:00:00Z&endTime=2011-06-02T00:10:00Z&sourceId=0")
        << QByteArray(R"({"error":"No AIA 171 data is available on or after )"
                      R"(2011-06-02T00:00:00Z.","uri":null})");
    QTest::newRow("closest image")
        << Operation::GetClosestImage << closestQuery
        << QByteArray(
               R"({"id":"%ID","date":"2010-06-02 00:06:12","name":"AIA 171",)"
               R"("scale":0.6046330815404457,"scaleCorrection":1,"width":4096,"height":4096,)"
               R"("refPixelX":2048.5,"refPixelY":2048.5,"offsetX":0,"offsetY":0,"rotation":0,)"
               R"("rsun":1587.151,"dsun":149597870700,"sunCenterOffsetParams":[],)"
               R"("layeringOrder":1})");
}

void TestSimulatorAnswers::bodiesAreWrittenByteForByte()
{
    QFETCH(Operation, operation);
    QFETCH(QString, query);
    QFETCH(QByteArray, body);
    const auto archive = smallArchive();
    body.replace("%ID", QByteArray::number(archive->idOf({0, 1, 0})));
    const Answer answer = answerTo(operation, query);
    QCOMPARE(answer.body, body);
    QCOMPARE(answer.status, 200);
    QVERIFY(answer.contentType.startsWith("application/json"));
}

void TestSimulatorAnswers::errorsHaveTheirStatusAndBody()
{
    const QString id = QString::number(smallArchive()->idOf({0, 1, 0}));
    const auto fails = [&id](Operation operation, const QString &query, int status,
                             const char *part) {
        const Answer answer = answerTo(operation, QString(query).replace(QLatin1String("%ID"), id));
        return answer.status == status && answer.body.contains(part);
    };
    const Operation closest = Operation::GetClosestImage;
    const Operation download = Operation::DownloadImage;
    const QString noon = QStringLiteral("date=2010-06-02T12:00:00Z&sourceId=");
    QVERIFY(fails(closest, QStringLiteral("sourceId=0"), 400, "Error:"));
    QVERIFY(fails(closest, QStringLiteral("date=2010-06-02T00:06:00&sourceId=0"), 400,
                  "<!DOCTYPE html>")); // its Z is missing
    QVERIFY(fails(closest, noon + QStringLiteral("AIA"), 400, "Error:"));
    QVERIFY(fails(closest, noon + QStringLiteral("10008"), 500, // without images
                  R"({"error":"No data of the requested type (XRT C_poly\/Any) are currently )"
                  R"(available.","errno":10})"));
    QVERIFY(fails(closest, noon + QStringLiteral("5"), 500, "type () are")); // unknown
    QVERIFY(fails(download, QStringLiteral("id=7&width=100&type=png"), 500, "\"errno\":24}"));
    QVERIFY(fails(download, QStringLiteral("id=%ID&width=0"), 500, "\"errno\":255}"));
    QVERIFY(fails(download, QStringLiteral("id=%ID&type=gif"), 400, "Error:"));
    QVERIFY(fails(Operation::GetJPX, jpxQuery + QStringLiteral("&linked=yes"), 400, "Error:"));
}

/// Orvik takes these as well as the usual form, so that no session shows that they depart from it.
void TestSimulatorAnswers::closestImageCanDepart()
{
    const QByteArray id = QByteArray::number(smallArchive()->idOf({0, 1, 0}));
    const auto answer = [](FaultKind kind) {
        const Operation operation = Operation::GetClosestImage;
        return answerTo(operation, closestQuery, {{operation, kind}}).body;
    };
    QVERIFY(answer(FaultKind::NumberId).startsWith("{\"id\":" + id + ','));
    QVERIFY(answer(FaultKind::NumericStrings).contains("\"rsun\":\"1587.151\""));
    QVERIFY(answer(FaultKind::NoRsun).contains("\"rotation\":0,\"dsun\""));
    QVERIFY(answer(FaultKind::LeadingNewline).startsWith("\n{\"id\":\"" + id));
}

QTEST_GUILESS_MAIN(TestSimulatorAnswers)
#include "tst_simulatoranswers.moc"
