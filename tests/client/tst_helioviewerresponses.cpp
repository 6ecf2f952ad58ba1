#include "client/helioviewerresponses.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

namespace {

QJsonObject object(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).object();
}

} // namespace

class TestHelioviewerResponses : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("TZ", "Europe/Berlin"); // a zone with daylight saving time
        tzset();
    }

    void noObject_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("message");
        QTest::newRow("array: nothing is enabled")
            << QByteArray("[]") << QStringLiteral("Invalid JSON: no error occurred");
        QTest::newRow("web page") << QByteArray("<!DOCTYPE html>")
                                  << QStringLiteral("Invalid JSON: illegal value");
        QTest::newRow("transfer cut off")
            << QByteArray("{\"SDO\":{\"AI") << QStringLiteral("Invalid JSON: unterminated string");
    }

    void noObject()
    {
        QFETCH(QByteArray, answer);
        QString errorText;
        QVERIFY(!HelioviewerResponses::parseObject(answer, &errorText));
        QTEST(errorText, "message");
        QVERIFY(!HelioviewerResponses::parseObject(answer));
    }

    void frameIndex_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QVector<qint64>>("seconds");
        QTest::addColumn<QString>("message");
        QTest::newRow("nothing to say") << QByteArray(R"({"message":null,"frames":[7,5,5]})")
                                        << QVector<qint64>{7, 5, 5} << QString();
        QTest::newRow("numbers, texts and rubbish")
            << QByteArray(R"({"frames":[1715299211.9,"1715299451",0,-3,0.9,null,true,[9],"12s","",)"
                          R"(1e300,"9223372036854775807"],"message":"thinned"})")
            << QVector<qint64>{1715299211, 1715299451} << QStringLiteral("thinned");
        QTest::newRow("empty interval")
            << QByteArray(R"({"error":"No images","uri":null})") << QVector<qint64>{} << QString();
    }

    void frameIndex()
    {
        QFETCH(QByteArray, answer);
        const auto index = HelioviewerResponses::frameIndex(object(answer));
        QVector<qint64> seconds;
        for (const QDateTime &frame : index.framesUtc) {
            QCOMPARE(frame.timeSpec(), Qt::UTC);
            seconds.append(frame.toSecsSinceEpoch());
        }
        QTEST(seconds, "seconds");
        QTEST(index.message, "message");
    }

    void imageTime_data()
    {
        const QString noon = QStringLiteral("2024-05-01T12:00:07.000Z");
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("expected"); // empty: refused
        QTest::newRow("service's form") << QStringLiteral("2024-05-01 12:00:07") << noon;
        QTest::newRow("hour that summer time skips")
            << QStringLiteral("2024-03-31 02:30:00") << QStringLiteral("2024-03-31T02:30:00.000Z");
        QTest::newRow("skipped hour in ISO form") << QStringLiteral("2024-03-31T02:30:00.250")
                                                  << QStringLiteral("2024-03-31T02:30:00.250Z");
        QTest::newRow("milliseconds and zone") << QStringLiteral("2024-05-01T12:00:07.250Z")
                                               << QStringLiteral("2024-05-01T12:00:07.250Z");
        QTest::newRow("offset") << QStringLiteral("2024-05-01T14:00:07+02:00") << noon;
        QTest::newRow("negative offset") << QStringLiteral("2024-05-01T10:00:07-02:00") << noon;
        QTest::newRow("date alone")
            << QStringLiteral("2024-05-01") << QStringLiteral("2024-05-01T00:00:00.000Z");
        QTest::newRow("no such day") << QStringLiteral("2024-02-30 12:00:00") << QString();
        QTest::newRow("words") << QStringLiteral("yesterday") << QString();
        QTest::newRow("empty") << QString() << QString();
    }

    void imageTime()
    {
        QFETCH(QString, date);
        const QJsonObject answer{{QStringLiteral("id"), 1}, {QStringLiteral("date"), date}};
        const auto image = HelioviewerResponses::closestImage(answer);
        QTEST(image ? image->actualUtc.toString(Qt::ISODateWithMs) : QString(), "expected");
    }

    void imageId_data()
    {
        QTest::addColumn<QByteArray>("id");
        QTest::addColumn<qint64>("expected"); // 0: refused
        QTest::newRow("text of digits") << QByteArray("\"191775465\"") << Q_INT64_C(191775465);
        QTest::newRow("number") << QByteArray("191775465") << Q_INT64_C(191775465);
        for (const char *id : {"0", "-4", "\"\"", "\"12a\"", "null", "true", "[12]", "{}"})
            QTest::newRow(id) << QByteArray(id) << Q_INT64_C(0);
    }

    void imageId()
    {
        QFETCH(QByteArray, id);
        QString errorText;
        const auto image = HelioviewerResponses::closestImage(
            object("{\"date\":\"2024-05-01 12:00:07\",\"id\":" + id + "}"), &errorText);
        QTEST(image ? image->imageId : 0, "expected");
        QCOMPARE(errorText,
                 image ? QString()
                       : QStringLiteral("Response does not contain a valid image id/date."));
    }
};

QTEST_APPLESS_MAIN(TestHelioviewerResponses)
#include "tst_helioviewerresponses.moc"
