#include "roi/roisession.h"

#include "tests/roi/testsession.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

/// A stored session read back, whole and damaged, and which of its folders may be written to.
class TestRoiSession : public QObject
{
    Q_OBJECT

private slots:
    void wholeSession()
    {
        const TestSession stored;
        const auto session = RoiSession::load(stored.path());
        QVERIFY(session);
        QCOMPARE(session->directory, stored.path());
        QCOMPARE(session->videoFps, 5);
        QCOMPARE(session->videoCrf, 0);
        QVERIFY(session->sourceOverlay && session->scaleOverlay); // absent: on
        QCOMPARE(session->sources.size(), 2);
        const RoiSource &source = session->sources.first();
        QCOMPARE(source.sourceId, 10);
        QCOMPARE(source.nickname, QStringLiteral("AIA 171"));
        QCOMPARE(source.folder, stored.filePath(QStringLiteral("AIA_171")));
        QCOMPARE(source.frames.size(), 3);
        QCOMPARE(source.frames.at(2).file, stored.filePath(QStringLiteral("AIA_171/frame_2.png")));
        QCOMPARE(source.frames.at(2).actualUtc,
                 QDateTime(QDate(2024, 5, 1), QTime(12, 2), Qt::UTC));
        QCOMPARE(source.frames.at(2).metadata.value(QStringLiteral("rsun")).toDouble(), 1600.0);
    }

    void framesFollowTheManifestAndWhatIsThere()
    {
        const TestSession stored;
        QByteArrayList lines = stored.read(QStringLiteral("manifest.csv")).split('\n');
        std::swap(lines[1], lines[3]);
        stored.write(QStringLiteral("manifest.csv"), lines.join('\n'));
        QFile::remove(stored.filePath(QStringLiteral("AIA_171/frame_1.png")));
        const auto session = RoiSession::load(stored.path());
        QCOMPARE(session->sources.first().frames.size(), 2);
        QVERIFY(session->sources.first().frames.first().file.endsWith(QLatin1String("_2.png")));
    }

    void withoutRowsTheFolderIsScanned()
    {
        const TestSession stored;
        QFile::remove(stored.filePath(QStringLiteral("manifest.csv")));
        stored.write(QStringLiteral("AIA_171/frame_10.png"), "x");
        stored.write(QStringLiteral("AIA_171/other.png"), "x");
        QDir(stored.filePath(QStringLiteral("HMI"))).removeRecursively();
        const auto session = RoiSession::load(stored.path());
        const QVector<RoiSourceFrame> frames = session->sources.first().frames;
        QCOMPARE(frames.size(), 4);
        QVERIFY(frames.at(2).file.endsWith(QLatin1String("frame_10.png"))); // by name
        QVERIFY(!frames.first().actualUtc.isValid());
        QVERIFY(frames.first().metadata.isEmpty());
        QVERIFY(session->sources.last().frames.isEmpty()); // listed all the same
        QCOMPARE(session->sourcesWithFrames(), 1);
    }

    void presets()
    {
        const TestSession stored;
        stored.changeDescriptor({{QStringLiteral("videoFps"), QStringLiteral("thirty")},
                                 {QStringLiteral("videoCrf"), QJsonValue()},
                                 {QStringLiteral("sourceOverlay"), false},
                                 {QStringLiteral("scaleOverlay"), 0}});
        const auto session = RoiSession::load(stored.path());
        QCOMPARE(session->videoFps, 25);
        QCOMPARE(session->videoCrf, 18);
        QVERIFY(!session->sourceOverlay);
        QVERIFY(session->scaleOverlay); // a number is no answer
    }

    void unusableDescriptor_data()
    {
        QTest::addColumn<QByteArray>("descriptor");
        QTest::addColumn<QString>("message");
        const QString invalid = QStringLiteral("Invalid session.json: ");
        const QString noFolders =
            QStringLiteral("No datasource folders were found in this session.");
        QTest::newRow("empty") << QByteArray() << invalid;
        QTest::newRow("a list") << QByteArray("[1]") << invalid;
        QTest::newRow("zero bytes") << QByteArray(64, '\0') << invalid;
        QTest::newRow("no sources") << QByteArray("{}") << noFolders;
        QTest::newRow("sources of other types")
            << QByteArray(R"({"sources":[1,"x",null,[],{}]})") << noFolders;
        QTest::newRow("without a folder name")
            << QByteArray(R"({"sources":[{"sourceId":1,"archiveName":""}]})") << noFolders;
        QTest::newRow("negative id")
            << QByteArray(R"({"sources":[{"sourceId":-1,"archiveName":"a"}]})") << noFolders;
    }
    void unusableDescriptor()
    {
        QFETCH(QByteArray, descriptor);
        QFETCH(QString, message);
        const TestSession stored;
        stored.write(QStringLiteral("session.json"), descriptor);
        QString errorText;
        QVERIFY(!RoiSession::load(stored.path(), &errorText));
        QVERIFY2(errorText.startsWith(message), qPrintable(errorText));
    }

    void missingDescriptor()
    {
        const QTemporaryDir folder;
        QString errorText;
        QVERIFY(!RoiSession::load(folder.path(), &errorText));
        QCOMPARE(errorText, QStringLiteral("The selected directory does not contain a readable "
                                           "session.json."));
    }

    void cutOffFiles()
    {
        const TestSession stored;
        const QByteArray manifest = stored.read(QStringLiteral("manifest.csv"));
        for (int length = 0; length < manifest.size(); ++length) {
            stored.write(QStringLiteral("manifest.csv"), manifest.left(length));
            const auto session = RoiSession::load(stored.path());
            QVERIFY(session);
            QCOMPARE(session->sourcesWithFrames(), 2); // the folder scan takes over
        }
        const QByteArray descriptor = stored.read(QStringLiteral("session.json")).trimmed();
        for (int length = 0; length < descriptor.size(); ++length) {
            stored.write(QStringLiteral("session.json"), descriptor.left(length));
            QVERIFY(!RoiSession::load(stored.path()));
        }
    }

    void writableFolders_data()
    {
        QTest::addColumn<QString>("archiveName");
        QTest::addColumn<bool>("allowed");
        QTest::newRow("its own") << QStringLiteral("AIA_171") << true;
        QTest::newRow("dots in a name") << QStringLiteral("AIA..171") << true;
        QTest::newRow("not there yet") << QStringLiteral("new") << true;
        QTest::newRow("link within the session") << QStringLiteral("inner") << true;
        QTest::newRow("the session itself") << QStringLiteral(".") << false;
        QTest::newRow("beside the session") << QStringLiteral("../AIA_171") << false;
        QTest::newRow("out and in again") << QStringLiteral("AIA_171/../HMI") << false;
        QTest::newRow("absolute") << QDir::tempPath() << false;
        QTest::newRow("link out") << QStringLiteral("outer") << false;
        QTest::newRow("below a link out") << QStringLiteral("outer/new") << false;
        QTest::newRow("link to nowhere") << QStringLiteral("dangling") << false;
    }
    void writableFolders()
    {
        QFETCH(QString, archiveName);
        QFETCH(bool, allowed);
        const TestSession stored;
        const QTemporaryDir outside;
        QFile::link(stored.filePath(QStringLiteral("HMI")),
                    stored.filePath(QStringLiteral("inner")));
        QFile::link(outside.path(), stored.filePath(QStringLiteral("outer")));
        QFile::link(QStringLiteral("/nonexistent"), stored.filePath(QStringLiteral("dangling")));

        stored.renameFirstFolder(archiveName);
        const auto session = RoiSession::load(stored.path());
        QString errorText;
        QCOMPARE(RoiSession::mayWriteTo(session->sources.first(), session->directory, &errorText),
                 allowed);
        QCOMPARE(errorText.contains(archiveName), !allowed);
    }
};

QTEST_GUILESS_MAIN(TestRoiSession)
#include "tst_roisession.moc"
