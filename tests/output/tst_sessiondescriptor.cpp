#include "output/sessiondescriptor.h"

#include <QtTest>

class TestSessionDescriptor : public QObject
{
    Q_OBJECT

private slots:
    void wholeText();
    void probeModes();
};

namespace {

SessionRecord sampleSession()
{
    SessionSourceRecord source;
    source.source = {10, QStringLiteral("AIA 171"), QStringLiteral("SDO/AIA/171")};
    source.timingProfile = QStringLiteral("AIA");
    source.maxTimeErrorSeconds = 31;
    source.acceptedFrames = 1;
    source.timestampedVideoFrames = 2;
    source.duplicateRequests = 3;
    source.rejectedTimeRequests = 4;
    source.preflightMode = QStringLiteral("direct-dense-source");
    source.preflightUniqueFrames = 5;
    source.medianSeconds = 6;
    source.minSeconds = 7;
    source.maxSeconds = 8;

    SessionRecord session;
    session.settings.startUtc = QDateTime({2024, 1, 1}, {2, 0}, Qt::OffsetFromUTC, 7200);
    session.apiBase = QStringLiteral("http://localhost/v2");
    session.preflightParallelRequests = 3;
    session.preflightProbeSeconds = 7200;
    session.canceled = true;
    session.completedUtc = QDateTime({2024, 1, 2}, {3, 4, 5}, Qt::UTC);
    session.sources = {source};
    return session;
}

} // namespace

void TestSessionDescriptor::wholeText()
{
    const QByteArray expected = R"({
    "apiBase": "http://localhost/v2",
    "application": "Orvik",
    "cadenceSeconds": 60,
    "canceled": true,
    "completedUtc": "2024-01-02T03:04:05Z",
    "createVideos": true,
    "endUtc": "",
    "formatVersion": 1,
    "imageWidth": 1024,
    "keepFrames": true,
    "maxTimeErrorSeconds": 30,
    "preflightParallelRequests": 3,
    "scaleBasis": "Helioviewer rsun + IAU nominal solar radius 695700 km",
    "scaleOverlay": false,
    "scaleOverlayPosition": "top-right",
    "sourceOverlay": true,
    "sourceOverlayPosition": "bottom-right",
    "sources": [
        {
            "acceptedFrames": 1,
            "archiveName": "AIA_171_20240101_000000",
            "duplicateRequests": 3,
            "effectiveCadenceMaxSeconds": 8,
            "effectiveCadenceMedianSeconds": 6,
            "effectiveCadenceMinSeconds": 7,
            "maxTimeErrorSeconds": 31,
            "nickname": "AIA 171",
            "path": "SDO/AIA/171",
            "preflightMode": "direct-dense-source",
            "preflightProbeSeconds": 7200,
            "preflightUniqueFrames": 5,
            "preflightUsed": false,
            "rejectedTimeRequests": 4,
            "sourceId": 10,
            "timestampedVideoFrames": 2,
            "timingProfile": "AIA",
            "videoFile": "AIA_171_20240101_000000.mp4"
        }
    ],
    "startUtc": "2024-01-01T00:00:00Z",
    "timestampOverlay": true,
    "timestampTimeBasis": "Helioviewer actual UTC",
    "timestampedVideoFramesDirectory": "video_frames",
    "useSourceTimingProfiles": true,
    "videoCrf": 18,
    "videoFps": 25
}
)";
    QCOMPARE(QString::fromUtf8(QJsonDocument(SessionDescriptor::toJson(sampleSession())).toJson()),
             QString::fromUtf8(expected));
}

void TestSessionDescriptor::probeModes()
{
    SessionRecord session = sampleSession();
    session.sources.append(session.sources.constFirst());
    session.sources.first().preflightMode = QStringLiteral("quick-probe");
    session.sources.last().preflightMode = QStringLiteral("fallback");
    session.sources.last().archiveName = QStringLiteral("given");

    const QJsonValue sources = SessionDescriptor::toJson(session)[QStringLiteral("sources")];
    QCOMPARE(sources[0][QStringLiteral("preflightUsed")], QJsonValue(true));
    QCOMPARE(sources[1][QStringLiteral("preflightUsed")], QJsonValue(false));
    QCOMPARE(sources[1][QStringLiteral("videoFile")], QJsonValue(QStringLiteral("given.mp4")));
}

QTEST_APPLESS_MAIN(TestSessionDescriptor)
#include "tst_sessiondescriptor.moc"
