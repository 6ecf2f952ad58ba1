#include "output/sessiondescriptor.h"

#include <QtTest>

class TestSessionDescriptor : public QObject
{
    Q_OBJECT

private slots:
    void wholeText();
};

void TestSessionDescriptor::wholeText()
{
    const DataSource aia{10, QStringLiteral("AIA 171"), QStringLiteral("SDO/AIA/171")};
    const DataSource eit{0, QStringLiteral("EIT 171"), QStringLiteral("SOHO/EIT/171")};
    SessionRecord session;
    session.settings.startUtc = QDateTime({2024, 1, 1}, {2, 0}, Qt::OffsetFromUTC, 7200);
    session.apiBase = QStringLiteral("http://localhost/v2");
    session.preflightParallelRequests = 3;
    session.preflightProbeSeconds = 7200;
    session.canceled = true;
    session.completedUtc = QDateTime({2024, 1, 2}, {3, 4, 5}, Qt::UTC);
    session.sources = {{aia,
                        {},
                        QStringLiteral("AIA"),
                        31,
                        1,
                        2,
                        3,
                        4,
                        PreflightMode::DirectDenseSource,
                        0,
                        0,
                        0,
                        0},
                       {eit, QStringLiteral("own"), QStringLiteral("DEFAULT"), 30, 0, 0, 0, 0,
                        PreflightMode::QuickProbe, 5, 6, 7, 8}};

    QFile expected(QFINDTESTDATA("session.json"));
    QVERIFY(expected.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(QJsonDocument(SessionDescriptor::toJson(session)).toJson()),
             QString::fromUtf8(expected.readAll()));
}

QTEST_APPLESS_MAIN(TestSessionDescriptor)
#include "tst_sessiondescriptor.moc"
