#include "client/helioviewerrequests.h"

#include <QtTest>

class TestHelioviewerRequests : public QObject
{
    Q_OBJECT

private slots:
    void url_data()
    {
        const QString base = QStringLiteral("https://example.org/v2");
        const QDateTime start(QDate(2024, 5, 1), QTime(2, 0), Qt::OffsetFromUTC, 7200);
        QTest::addColumn<QString>("url");
        QTest::addColumn<QString>("expected");

        QTest::newRow("catalog: no question mark without parameters")
            << HelioviewerRequests::dataSourcesUrl(base)
            << QStringLiteral("https://example.org/v2/getDataSources/");
        for (const int cadence : {-5, 0, 1})
            QTest::addRow("frame index at cadence %d, times converted to UTC", cadence)
                << HelioviewerRequests::jpxUrl(base, 0, start, start.addSecs(60), cadence)
                << QStringLiteral("https://example.org/v2/getJPX/?startTime=2024-05-01T00:00:00Z"
                                  "&endTime=2024-05-01T00:01:00Z&sourceId=0&linked=true&jpip=true"
                                  "&verbose=true&cadence=1");
        QTest::newRow("closest image from a base with a blank and an umlaut")
            << HelioviewerRequests::closestImageUrl(QStringLiteral("http://[::1]:8080/my s\u00fcn"),
                                                    10013, start)
            << QStringLiteral("http://[::1]:8080/my%20s%C3%BCn/getClosestImage/"
                              "?date=2024-05-01T00:00:00Z&sourceId=10013");
        QTest::newRow("rendered image with an id beyond 32 bits")
            << HelioviewerRequests::renderedImageUrl(base, 9007199254740993, 1024)
            << QStringLiteral("https://example.org/v2/downloadImage/"
                              "?id=9007199254740993&width=1024&type=png");
    }

    void url()
    {
        QFETCH(QString, url);
        QTEST(url, "expected");
    }
};

QTEST_APPLESS_MAIN(TestHelioviewerRequests)
#include "tst_helioviewerrequests.moc"
