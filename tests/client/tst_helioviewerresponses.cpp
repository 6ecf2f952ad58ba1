#include "client/helioviewerresponses.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

class TestHelioviewerResponses : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("TZ", "Europe/Berlin"); // a zone with daylight saving time
        tzset();
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
        const auto index =
            HelioviewerResponses::frameIndex(QJsonDocument::fromJson(answer).object());
        QVector<qint64> seconds;
        for (const QDateTime &frame : index.framesUtc)
            seconds.append(frame.timeSpec() == Qt::UTC ? frame.toSecsSinceEpoch() : -1);
        QTEST(seconds, "seconds");
        QTEST(index.message, "message");
    }

    void closestImage_data()
    {
        const QString noon = QStringLiteral("2024-05-01T12:00:07.000Z 5");
        QTest::addColumn<QByteArray>("date");
        QTest::addColumn<QByteArray>("id");
        QTest::addColumn<QString>("expected"); // empty: refused
        const auto row = [](const char *name, const char *date, const char *id,
                            const QString &expected) {
            QTest::newRow(name) << QByteArray(date) << QByteArray(id) << expected;
        };
        row("service's form", "2024-05-01 12:00:07", "\"5\"", noon);
        row("id as number", "2024-05-01 12:00:07", "5", noon);
        row("hour that summer time skips", "2024-03-31 02:30:00", "5",
            QStringLiteral("2024-03-31T02:30:00.000Z 5"));
        row("milliseconds, no zone", "2024-03-31T02:30:00.250", "5",
            QStringLiteral("2024-03-31T02:30:00.250Z 5"));
        row("milliseconds and zone", "2024-05-01T12:00:07.000Z", "5", noon);
        row("offset", "2024-05-01T14:00:07+02:00", "5", noon);
        row("negative offset", "2024-05-01T10:00:07-02:00", "5", noon);
        row("date alone", "2024-05-01", "5", QStringLiteral("2024-05-01T00:00:00.000Z 5"));
        row("no such day", "2024-02-30 12:00:00", "5", QString());
        row("no date", "", "5", QString());
        for (const char *id : {"0", "-4", "\"\"", "\"12a\"", "null", "true", "[12]"})
            row(id, "2024-05-01 12:00:07", id, QString());
    }

    void closestImage()
    {
        QFETCH(QByteArray, date);
        QFETCH(QByteArray, id);
        const auto image = HelioviewerResponses::closestImage(
            QJsonDocument::fromJson("{\"date\":\"" + date + "\",\"id\":" + id + "}").object());
        QTEST(image ? image->actualUtc.toString(Qt::ISODateWithMs) + QLatin1Char(' ') +
                          QString::number(image->imageId)
                    : QString(),
              "expected");
    }
};

QTEST_APPLESS_MAIN(TestHelioviewerResponses)
#include "tst_helioviewerresponses.moc"
