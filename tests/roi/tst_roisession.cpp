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
        QCOMPARE(source.nickname, u"AIA 171"_s);
        QCOMPARE(source.frames.size(), 3);
        QCOMPARE(source.frames.at(2).file, stored.filePath(u"AIA_171/frame_2.png"_s));
        QCOMPARE(source.frames.at(2).actualUtc, QDateTime({2024, 5, 1}, {12, 2}, Qt::UTC));
        QCOMPARE(source.frames.at(2).metadata.value(u"rsun"_s).toDouble(), 1600.0);

        QByteArrayList lines = stored.read(u"manifest.csv"_s).split('\n');
        std::swap(lines[1], lines[3]);
        stored.write(u"manifest.csv"_s, lines.join('\n'));
        QFile::remove(stored.filePath(u"AIA_171/frame_1.png"_s));
        QFile::link(u"/nonexistent"_s, stored.filePath(u"AIA_171/frame_1.png"_s));
        const auto frames = RoiSession::load(stored.path())->sources.first().frames;
        QCOMPARE(frames.size(), 2); // in the manifest's order, as far as they are there
        QVERIFY(frames.first().file.endsWith(u"_2.png"_s));
    }

    void withoutRowsTheFolderIsScanned()
    {
        const TestSession stored;
        QFile::remove(stored.filePath(u"manifest.csv"_s));
        stored.write(u"AIA_171/frame_10.png"_s, "x");
        stored.write(u"AIA_171/other.png"_s, "x");
        QDir(stored.filePath(u"HMI"_s)).removeRecursively();
        const auto session = RoiSession::load(stored.path());
        const QVector<RoiSourceFrame> frames = session->sources.first().frames;
        QCOMPARE(frames.size(), 4);
        QVERIFY(frames.at(2).file.endsWith(u"frame_10.png"_s)); // by name
        QVERIFY(!frames.first().actualUtc.isValid() && frames.first().metadata.isEmpty());
        QVERIFY(session->sources.last().frames.isEmpty()); // listed all the same
        QCOMPARE(session->sourcesWithFrames(), 1);
    }

    void damagedFiles()
    {
        const TestSession stored;
        const QByteArray manifest = stored.read(u"manifest.csv"_s);
        for (int length = 0; length < manifest.size(); ++length) {
            stored.write(u"manifest.csv"_s, manifest.left(length));
            QCOMPARE(RoiSession::load(stored.path())->sourcesWithFrames(), 2); // by folder scan
        }
        const auto failure = [&stored](const QByteArray &descriptor) {
            stored.write(u"session.json"_s, descriptor);
            QString errorText;
            return RoiSession::load(stored.path(), &errorText) ? u"loaded"_s : errorText;
        };
        const QByteArray whole = stored.read(u"session.json"_s).trimmed();
        for (int length = 0; length < whole.size(); ++length)
            QVERIFY(failure(whole.left(length)).startsWith(u"Invalid session.json: "_s));
        QVERIFY(failure("[1]").startsWith(u"Invalid session.json: "_s));
        for (const char *empty :
             {"{}", R"({"sources":[1,"x",null,{},{"sourceId":1,"archiveName":""},
                                   {"sourceId":-1,"archiveName":"a"}]})"})
            QCOMPARE(failure(empty), u"No datasource folders were found in this session."_s);
        QString errorText;
        QVERIFY(!RoiSession::load(stored.filePath(u"HMI"_s), &errorText));
        QCOMPARE(errorText, u"The selected directory does not contain a readable session.json."_s);
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
        QFile::link(stored.filePath(u"HMI"_s), stored.filePath(u"link within"_s));
        QFile::link(outside.path(), stored.filePath(u"link out"_s));
        QFile::link(u"/nonexistent"_s, stored.filePath(u"link to nowhere"_s));
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
