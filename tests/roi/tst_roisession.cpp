#include "roi/roisession.h"

#include "tests/roi/testsession.h"

#include <QDir>
#include <QtTest>

/// A stored session read back, whole and damaged, and which of its folders may be written to.
class TestRoiSession : public QObject
{
    Q_OBJECT

private slots:
    void wholeSession()
    {
        const TestSession stored;
        stored.editDescriptor(R"("videoCrf": 0)", R"("videoCrf": "eighteen",
                              "sourceOverlay": false, "scaleOverlay": 0)");
        const auto session = RoiSession::load(stored.path());
        QCOMPARE(session->directory, stored.path());
        QCOMPARE(session->videoFps, 5);
        QCOMPARE(session->videoCrf, 18);
        QVERIFY(!session->sourceOverlay && session->scaleOverlay); // a number is no answer
        QCOMPARE(session->sources.size(), 2);
        const RoiSource &source = session->sources.first();
        QCOMPARE(source.sourceId, 10);
        QCOMPARE(source.nickname, QStringLiteral("AIA 171"));
        QCOMPARE(source.frames.size(), 3);
        QCOMPARE(source.frames.at(2).file, stored.filePath("AIA_171/frame_2.png"));
        QCOMPARE(source.frames.at(2).actualUtc, QDateTime({2024, 5, 1}, {12, 2}, Qt::UTC));
        QCOMPARE(source.frames.at(2).metadata.value(QStringLiteral("rsun")).toDouble(), 1600.0);

        QByteArrayList lines = stored.read("manifest.csv").split('\n');
        std::swap(lines[1], lines[3]);
        stored.write("manifest.csv", lines.join('\n'));
        QFile::remove(stored.filePath("AIA_171/frame_1.png"));
        QFile::link(QStringLiteral("/nonexistent"), stored.filePath("AIA_171/frame_1.png"));
        const auto frames = RoiSession::load(stored.path())->sources.first().frames;
        QCOMPARE(frames.size(), 2); // in the manifest's order, as far as they are there
        QVERIFY(frames.first().file.endsWith(QStringLiteral("_2.png")));
    }

    void withoutRowsTheFolderIsScanned()
    {
        const TestSession stored;
        QFile::remove(stored.filePath("manifest.csv"));
        stored.write("AIA_171/frame_10.png", "x");
        stored.write("AIA_171/other.png", "x");
        QDir(stored.filePath("HMI")).removeRecursively();
        const auto session = RoiSession::load(stored.path());
        const QVector<RoiSourceFrame> frames = session->sources.first().frames;
        QCOMPARE(frames.size(), 4);
        QVERIFY(frames.at(2).file.endsWith(QStringLiteral("frame_10.png"))); // by name
        QVERIFY(!frames.first().actualUtc.isValid() && frames.first().metadata.isEmpty());
        QVERIFY(session->sources.last().frames.isEmpty()); // listed all the same
        QCOMPARE(session->sourcesWithFrames(), 1);
    }

    void damagedFiles()
    {
        const TestSession stored;
        const QByteArray manifest = stored.read("manifest.csv");
        for (int length = 0; length < manifest.size(); ++length) {
            stored.write("manifest.csv", manifest.left(length));
            QCOMPARE(RoiSession::load(stored.path())->sourcesWithFrames(), 2); // by folder scan
        }
        const auto failure = [&stored](const QByteArray &descriptor) {
            stored.write("session.json", descriptor);
            QString errorText;
            return RoiSession::load(stored.path(), &errorText) ? QStringLiteral("loaded")
                                                               : errorText;
        };
        const QByteArray whole = stored.read("session.json").trimmed();
        for (int length = 0; length < whole.size(); ++length)
            QVERIFY(
                failure(whole.left(length)).startsWith(QStringLiteral("Invalid session.json: ")));
        QCOMPARE(failure("{"), QStringLiteral("Invalid session.json: unterminated object"));
        QVERIFY(failure("[1]").startsWith(QStringLiteral("Invalid session.json: ")));
        for (const char *empty :
             {"{}", R"({"sources":[1,"x",null,{},{"sourceId":1,"archiveName":""},
                                   {"sourceId":-1,"archiveName":"a"}]})"})
            QCOMPARE(failure(empty),
                     QStringLiteral("No datasource folders were found in this session."));
        QString errorText;
        QVERIFY(!RoiSession::load(stored.filePath("HMI"), &errorText));
        QCOMPARE(
            errorText,
            QStringLiteral("The selected directory does not contain a readable session.json."));
    }

    void writableFolders_data()
    {
        QTest::addColumn<bool>("allowed");
        for (const char *name : {"AIA_171", "AIA..171", "not there yet", "link within"})
            QTest::newRow(name) << true;
        for (const char *name : {".", "../AIA_171", "AIA_171/../HMI", "/tmp", "link out",
                                 "link out/below", "link to nowhere"})
            QTest::newRow(name) << false;
    }
    void writableFolders()
    {
        QFETCH(bool, allowed);
        const TestSession stored;
        const TestSession outside;
        QFile::link(stored.filePath("HMI"), stored.filePath("link within"));
        QFile::link(outside.path(), stored.filePath("link out"));
        QFile::link(QStringLiteral("/nonexistent"), stored.filePath("link to nowhere"));
        const QString name = QLatin1String(QTest::currentDataTag());
        stored.editDescriptor("AIA_171", name.toUtf8());
        const auto session = RoiSession::load(stored.path());
        QString errorText;
        QCOMPARE(RoiSession::mayWriteTo(session->sources.first(), session->directory, &errorText),
                 allowed);
        QCOMPARE(errorText.contains(name), !allowed);
    }
};

QTEST_GUILESS_MAIN(TestRoiSession)
#include "tst_roisession.moc"
