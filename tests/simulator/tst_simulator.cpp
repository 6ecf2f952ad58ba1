#include "imaging/blankblock.h"
#include "simulator/archive/archive.h"
#include "simulator/service/faultyanswers.h"
#include "simulator/service/picturestore.h"

#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>
#include <QUrlQuery>

using namespace Simulator;

namespace {

/// A picture every 45 s through the hour that clocks in Europe leave out.
ArchiveSource aia()
{
    ArchiveSource source;
    source.path = QStringLiteral("SDO/AIA/171");
    source.nickname = QStringLiteral("AIA 171");
    source.rsunPx = 1587.151;
    source.start = QStringLiteral("2024-03-31 02:00:00");
    source.end = QStringLiteral("2024-03-31 04:00:00");
    source.spacingSeconds = 45;
    return source;
}

/// Of the datasource with that id, if any.
ArchiveSource group(const char *path, const char *nickname, int sourceId, int groupedSourceId)
{
    ArchiveSource source;
    source.path = QString::fromLatin1(path);
    source.nickname = QString::fromLatin1(nickname);
    source.sourceId = sourceId;
    source.groupedSourceId = groupedSourceId;
    return source;
}

/// The answer of an archive with datasource 0, a group that shows it, an empty group, and a
/// datasource without pictures.
Answer answerTo(Operation operation, const QString &query, const QVector<Fault> &faults = {})
{
    const auto archive = std::make_shared<const Archive>(
        QVector<ArchiveSource>{aia(), group("Hinode/XRT/Any/Any", "XRT Any/Any", 10001, 0),
                               group("Hinode/XRT/C_poly/Any", "XRT C_poly/Any", 10012, 49),
                               group("RHESSI/3-6keV/Clean", "RHESSI", 101, -1)});
    PictureStore pictures(archive);
    return answerOf(operation, *archive, pictures, QUrlQuery(query), faults);
}

constexpr Operation catalog = Operation::GetDataSources;
constexpr Operation jpx = Operation::GetJPX;
constexpr Operation closest = Operation::GetClosestImage;
constexpr Operation download = Operation::DownloadImage;

const struct
{
    const char *situation;
    Operation operation;
    const char *query;
    int status;
    const char *part; // of the body
} rows[] = {
    {"catalog", catalog, "", 200,
     R"({"171":{"end":"2024-03-31 04:00:00","layeringOrder":1,"nickname":"AIA 171","sourceId":0,)"
     R"("start":"2024-03-31 02:00:00","uiLabels":[{"label":"Observatory","name":"SDO"},)"
     R"({"label":"Instrument","name":"AIA"},{"label":"Measurement","name":"171"}]}})"},
    {"no picture, no dates", catalog, "", 200,
     R"({"Clean":{"end":null,"layeringOrder":1,"nickname":"RHESSI","sourceId":101,"start":null,)"
     R"("uiLabels":[{"label":"Observatory","name":"RHESSI"},{"label":"Energy Band","name":)"
     R"("3-6keV"},{"label":"Reconstruction","name":"Clean"}]}})"},
    {"a group has dates", catalog, "", 200,
     R"("nickname":"XRT C_poly\/Any","sourceId":10012,"start":"1991-09-11 00:00:00","uiLabels")"},
    {"frames at the cadence", jpx,
     "startTime=2024-03-31T02:00:01Z&endTime=2024-03-31T02:05:00Z&sourceId=0&linked=True&jpip=1"
     "&cadence=60",
     200,
     R"({"frames":[1711850445,1711850490,1711850535,1711850625,1711850670],"message":null,)"
     R"("uri":"jpips:\/\/helioviewer.org:8090\/movies\/SDO_AIA_171_F2024-03-31T02.00.01Z_)"
     R"(T2024-03-31T02.05.00ZB60L.jpx"})"},
    {"every frame without cadence", jpx,
     "startTime=2024-03-31T02:00:00Z&endTime=2024-03-31T02:02:00Z&sourceId=0", 200,
     R"({"frames":[1711850400,1711850445,1711850490],"message":null,)"},
    {"every frame at cadence 0", jpx,
     "startTime=2024-03-31T02:00:00Z&endTime=2024-03-31T02:00:40Z&sourceId=0&cadence=0", 200,
     R"({"frames":[1711850400],"message":null,)"},
    {"too many frames", jpx,
     "startTime=2024-03-31T02:00:00Z&endTime=2024-03-31T04:00:00Z&sourceId=0&cadence=5", 200,
     R"("message":"Movie cadence has been changed to one image every 7 seconds between your )"
     R"(requested start and end dates in order to avoid exceeding the maximum of 1000 frames )"
     R"(allowed per request.")"},
    {"one frame is none", jpx,
     "startTime=2024-03-31T02:00:00Z&endTime=2024-03-31T02:00:40Z&sourceId=0&cadence=60", 200,
     R"({"error":"Error encountered during JPX creation: No images were found for the requested )"
     R"(time range.","uri":null})"},
    {"before the first picture", jpx,
     "startTime=2010-06-02T00:00:00Z&endTime=2010-06-02T01:00:00Z&sourceId=0", 200,
     R"({"error":"No AIA 171 data is available on or before 2010-06-02T01:00:00Z.","uri":null})"},
    {"frames of a group", jpx,
     "startTime=2024-03-31T02:00:00Z&endTime=2024-03-31T03:00:00Z&sourceId=10001", 200,
     R"({"error":"No XRT Any\/Any data is available on or after 2024-03-31T02:00:00Z.","uri")"},
    {"frames of an unknown datasource", jpx,
     "startTime=2024-03-31T02:00:00Z&endTime=2024-03-31T03:00:00Z&sourceId=7", 200,
     R"({"error":"No  data is available on or after 2024-03-31T02:00:00Z.","uri":null})"},
    {"no boolean", jpx, "linked=yes", 400, "Error:"},
    {"closest image", closest, "date=2024/03/31T02:31:00.5Z&sourceId=0", 200,
     R"({"date":"2024-03-31 02:30:45","dsun":149597870700,"height":4096,"id":"42",)"
     R"("layeringOrder":1,"name":"AIA 171","offsetX":0,"offsetY":0,"refPixelX":2048.5,)"
     R"("refPixelY":2048.5,"rotation":0,"rsun":1587.151,"scale":0.6046330815404457,)"
     R"("scaleCorrection":1,"sunCenterOffsetParams":[],"width":4096})"},
    {"closest image, far away", closest, "date=2030-01-01T00:00:00Z&sourceId=0", 200,
     R"("date":"2024-03-31 04:00:00")"},
    {"closest image of a group", closest, "date=2024-03-31T02:00:00Z&sourceId=10001", 200,
     R"("name":"AIA 171")"},
    {"closest image of an empty group", closest, "date=2024-03-31T02:00:00Z&sourceId=10012", 500,
     R"({"errno":10,"error":"No data of the requested type (XRT C_poly\/Any) are currently )"
     R"(available."})"},
    {"closest image of an unknown datasource", closest, "date=2024-03-31T02:00:00Z&sourceId=7", 500,
     "type () are"},
    {"no date", closest, "sourceId=0", 400, "No value set for required parameter &quot;date&quot;"},
    {"a date without zone", closest, "date=2024-03-31T02:00:00&sourceId=0", 400,
     "Invalid date string. Please enter a date of the form 2003-10-06T00:00:00.000Z"},
    {"hour 24", closest, "date=2024-03-31T24:00:00Z&sourceId=0", 400, "Invalid date string."},
    {"minute 61", closest, "date=2024-03-31T12:61:00Z&sourceId=0", 400, "Invalid date string."},
    {"no integer", closest, "date=2024-03-31T02:00:00Z&sourceId=AIA", 400,
     "Invalid value for sourceId. Please specify an integer value."},
    {"picture that is not there", download, "id=7000&width=100&type=png", 500, R"({"errno":24,)"},
    {"picture without width", download, "id=7&width=0", 500, R"({"errno":255,)"},
    {"picture of another type", download, "id=7&type=webp", 400, "Error:"},
};

} // namespace

class TestSimulator final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Where clocks go from 2 to 3 o'clock; Europe/Berlin, known without a time zone database.
        qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    }

    void answersAreThePublicServices_data()
    {
        QTest::addColumn<int>("index");
        int index = 0;
        for (const auto &row : rows)
            QTest::newRow(row.situation) << index++;
    }

    void answersAreThePublicServices()
    {
        QFETCH(int, index);
        const auto &row = rows[index];
        const Answer answer = answerTo(row.operation, QString::fromLatin1(row.query));
        QCOMPARE(answer.status, row.status);
        QVERIFY2(answer.body.contains(row.part), answer.body);
        QVERIFY(
            answer.contentType.startsWith(row.status == 400 ? "text/html" : "application/json"));
    }

    void faultsAreReadFromText()
    {
        const std::optional<Fault> fault =
            faultFromText(QStringLiteral("DownloadImage:Delay:30:2"));
        QVERIFY(fault && fault->operation == download && fault->kind == FaultKind::Delay);
        QCOMPARE((QVector<int>{fault->value, fault->first}), (QVector<int>{30, 2}));
        QVERIFY(fault->count > 1000);
        for (const char *text :
             {"", "Delay", "GetJPX:Delays", "GetJPX:Delay:soon", "GetJPX:Hang:0:1:1:1"})
            QVERIFY2(!faultFromText(QString::fromLatin1(text)), text);
    }

    /// Of the sample archive, one as odd as the public one's.
    void wholePicturesRaiseNoAlarm()
    {
        const auto archive = Archive::sample();
        PictureStore pictures(archive);
        for (const int sourceId : {10, 11, 13, 19, 0, 4, 83, 2000, 84, 86, 18}) {
            const ArchiveImage image = *archive->nearest(sourceId, 1714525200); // 2024-05-01
            const ArchiveSource &source = archive->sourceOf(image);
            const QJsonObject metadata = {{QStringLiteral("width"), source.widthPx},
                                          {QStringLiteral("height"), source.heightPx},
                                          {QStringLiteral("rsun"), source.rsunPx},
                                          {QStringLiteral("refPixelX"), source.refPixelX},
                                          {QStringLiteral("refPixelY"), source.refPixelY}};
            const QImage picture = QImage::fromData(pictures.png(image, 1024));
            QCOMPARE(picture.size(), QSize(1024, sourceId == 84 ? 1035 : 1024));
            QCOMPARE(detectBlankRendererBlock(picture, metadata), QString());
        }
    }
};

QTEST_GUILESS_MAIN(TestSimulator)
#include "tst_simulator.moc"
