#include "roi/frameinterval.h"
#include "roi/roisession.h"
#include "roi/roiset.h"
#include "roi/samescale.h"
#include "roi/solarposition.h"
#include "tests/roi/testsession.h"
#include "tests/support/literals.h"
#include "tests/support/testfolder.h"

#include <QDir>
#include <QtTest>

#include <sys/stat.h>

/// A session and its regions read back, whole and damaged, and where it may be written to.
class TestStoredSession final : public QObject
{
    Q_OBJECT

private slots:
    void wholeSession()
    {
        const TestSession stored;
        stored.write(
            "session.json",
            stored.read("session.json")
                .replace(R"("videoCrf": 0)",
                         R"("videoCrf": "eighteen", "sourceOverlay": false, "scaleOverlay": 0)"));
        QByteArrayList lines = stored.read("manifest.csv").split('\n');
        std::swap(lines[1], lines[3]);
        stored.write("manifest.csv", lines.join('\n'));
        QFile::remove(stored.filePath("AIA_171/frame_1.png"));
        QFile::link(stored.filePath("missing"), stored.filePath("AIA_171/frame_1.png"));
        const auto session = RoiSession::load(stored.path());
        QCOMPARE(session->directory, stored.path());
        QCOMPARE(session->startUtc, QDateTime({2024, 5, 1}, {12, 0}, Qt::UTC));
        QCOMPARE(session->videoFps, 5);
        QCOMPARE(session->videoCrf, 18);
        QVERIFY(!session->sourceOverlay && session->scaleOverlay); // a number is no answer
        QCOMPARE(session->sources.size(), 2);
        const RoiSource &source = session->sources.first();
        QCOMPARE(source.sourceId, 10);
        QCOMPARE(source.nickname, "AIA 171"_s);
        QCOMPARE(source.frames.size(), 2); // in the manifest's order, as far as they are there
        const RoiSourceFrame &frame = source.frames.first();
        QCOMPARE(frame.file, stored.filePath("AIA_171/frame_2.png"));
        QCOMPARE(frame.actualUtc, QDateTime({2024, 5, 1}, {12, 2}, Qt::UTC));
        QCOMPARE(frame.metadata.value("rsun"_s).toDouble(), 1600.0);
    }

    void withoutRowsTheFolderIsScanned()
    {
        const TestSession stored;
        QFile::remove(stored.filePath("manifest.csv"));
        stored.write("AIA_171/frame_10.png", "x");
        stored.write("AIA_171/other.png", "x");
        QDir(stored.filePath("HMI")).removeRecursively();
        const auto session = RoiSession::load(stored.path());
        QCOMPARE(session->sourcesWithFrames(), 1);
        QCOMPARE(session->sources.size(), 2); // one without frames is listed all the same
        const QVector<RoiSourceFrame> frames = session->sources.first().frames;
        QCOMPARE(frames.size(), 4);
        QVERIFY(frames.at(2).file.endsWith("frame_10.png"_s)); // by name
        QVERIFY(!frames.first().actualUtc.isValid());
        QDir(stored.filePath("AIA_171")).removeRecursively();
        QCOMPARE(RoiSession::load(stored.path())->firstWithFrames(), 0); // none has any
    }

    void damagedDescriptors()
    {
        const TestSession stored;
        const auto failure = [&stored](const QByteArray &descriptor) {
            stored.write("session.json", descriptor);
            QString errorText;
            RoiSession::load(stored.path(), &errorText);
            return errorText;
        };
        const QByteArray whole = stored.read("session.json").trimmed();
        for (int length = 0; length < whole.size(); ++length)
            QVERIFY(failure(whole.left(length)).startsWith("Invalid session.json: "_s));
        QCOMPARE(failure(R"({"sources":[1,"x",null,{},{"sourceId":1,"archiveName":""},
                                        {"sourceId":-1,"archiveName":"a"}]})"),
                 "No datasource folders were found in this session."_s);
    }

    void pipesAreNotWaitedFor()
    {
        const TestSession stored;
        QString errorText;
        for (const char *const name : {"rois.json", "manifest.csv", "session.json"}) {
            QFile::remove(stored.filePath(name));
            QCOMPARE(mkfifo(QFile::encodeName(stored.filePath(name)).constData(), 0600), 0);
            QVERIFY(RoiSet::load(stored.path()).isEmpty());
            QCOMPARE(RoiSession::load(stored.path(), &errorText).has_value(), name[0] != 's');
        }
        QCOMPARE(errorText, "The selected directory does not contain a readable "
                            "session.json."_s);
    }

    void onlyFoldersBelowTheSessionAreWrittenTo()
    {
        const TestSession stored;
        const TestSession outside;
        QFile::link(stored.filePath("HMI"), stored.filePath("link within"));
        QFile::link(outside.path(), stored.filePath("link out"));
        QFile::link(stored.filePath("missing"), stored.filePath("link to nowhere"));
        RoiSource source;
        const auto refusal = [&](const char *name) {
            source.archiveName = QLatin1String(name);
            QString errorText;
            return RoiSession::mayWriteTo(source, stored.path(), &errorText) ? QString()
                                                                             : errorText;
        };
        for (const char *name : {"AIA_171", "AIA..171", "not there yet", "link within"})
            QCOMPARE(refusal(name), QString());
        for (const char *name : {".", "../AIA_171", "AIA_171/../HMI", "/tmp", "link out",
                                 "link out/below", "link to nowhere"})
            QVERIFY2(refusal(name).contains(QLatin1String(name)), name);
    }

    void regionsAreSavedAndLoaded()
    {
        const TestSession session;
        const QVector<Roi> rois = {{"Flare"_s, QRectF(0.1, 0.2, 0.3, 0.4), true, -90},
                                   {"a/b\n<i>%1"_s, QRectF(0, 0, 1, 1), false, 45}};
        QVERIFY(RoiSet::save(rois, session.path()));
        QCOMPARE(RoiSet::load(session.path()), rois);
        const QByteArray text = session.read("rois.json");
        const QByteArray name = QFileInfo(session.path()).fileName().toUtf8();
        QVERIFY(text.startsWith("{\n    \"application\": \"Orvik\",\n"
                                "    \"coordinateSystem\": \"normalized-full-frame\",\n"
                                "    \"formatVersion\": 2,\n    \"rois\": [\n"));
        QVERIFY(text.endsWith("    \"session\": \"" + name + "\"\n}\n"));
    }

    void oddRegions()
    {
        const TestSession session;
        session.write("rois.json",
                      R"({"rois":[3, null, "x", [], {}, {"width":0,"height":1},
            {"width":"1","height":true}, {"x":-1e308,"width":-1e308,"height":1},
            {"x":0.5,"width":-0.2,"height":0.1}, {"name":7,"width":2,"height":3}]})");
        const QVector<Roi> rois = RoiSet::load(session.path());
        QCOMPARE(rois.size(), 2);
        QCOMPARE(rois.at(0).rect, QRectF(0.3, 0, 0.2, 0.1)); // drawn to the left
        QCOMPARE(rois.at(1).name, "ROI 2"_s);                // counts what was kept
        QVERIFY(rois.at(1).enabled && rois.at(1).rotation == 0);
    }

    void damagedRegionsAreKept()
    {
        const TestSession session;
        session.write("rois.json.bad", "an older one");
        session.write("rois.json", "[]");
        QString remark;
        QVERIFY(RoiSet::load(session.path(), &remark).isEmpty());
        QVERIFY(remark.startsWith("WARNING rois.json of this session is damaged"_s));
        QVERIFY(RoiSet::save({}, session.path()));
        QCOMPARE(session.read("rois.json.bad") + session.read("rois.json.bad2"),
                 QByteArray("an older one[]"));
        remark.clear();
        QVERIFY(RoiSet::save({}, session.path())); // there is nothing more to keep
        QVERIFY(!QFile::exists(session.filePath("rois.json.bad3")));
        QVERIFY(RoiSet::load(session.path(), &remark).isEmpty() && remark.isEmpty());
        session.write("rois.json", "[]");
        TestFolder::leaveRoom(0);
        QVERIFY(!RoiSet::save({}, session.path(), &remark));
        TestFolder::leaveRoom();
        QCOMPARE(remark + QString::fromLatin1(session.read("rois.json")),
                 "Cannot commit rois.json.[]"_s);
        QVERIFY(!RoiSet::save({}, session.filePath("missing"), &remark));
        QCOMPARE(remark, "Cannot create rois.json in the session directory."_s);
        const Roi roi{"a"_s, {0, 0, 1, 1}, true, 90};
        for (const Roi &other : {Roi{"b"_s, roi.rect, true, 90}, Roi{"a"_s, {0, 0, 1, 2}, true, 90},
                                 Roi{"a"_s, roi.rect, false, 90}, Roi{"a"_s, roi.rect, true, 0}})
            QVERIFY(roi == roi && !(roi == other));
    }

    void partsWithoutTimes()
    {
        using namespace FrameIntervals;
        const QVector<RoiSourceFrame> frames(4);
        QCOMPARE(kept(endingAt({}, frames, 7, 2), frames, 7), QVector<int>({0, 1, 2}));
        const FrameInterval from = beginningAt({}, frames, 7, 1);
        QCOMPARE(kept(from, frames, 7), QVector<int>({1, 2, 3}));
        for (const int end : {1, 0}) { // where it begins, and before that
            const FrameInterval part = endingAt(from, frames, 7, end);
            QCOMPARE(kept(part, frames, 7), QVector<int>({end}));
            QCOMPARE(kept(beginningAt(part, frames, 7, end), frames, 7), QVector<int>({end}));
        }
        QCOMPARE(explanation(from, 7),
                 "Films are made of this part of the datasource. Its frames have no times, so that "
                 "other datasources are not cut with it."_s);
    }

    void scalesThatAreNotKnown()
    {
        QJsonObject sun{{"rsun"_s, 80}, {"width"_s, 1024}, {"height"_s, 1024}};
        const QJsonObject plain = sun;
        sun.insert("refPixelX"_s, 512);
        sun.insert("refPixelY"_s, 506);
        QCOMPARE(SameScale::warning({{"a"_s, sun}, {"b"_s, plain}}), QString());
        QCOMPARE(SameScale::warning({{"a"_s, {}}, {"b"_s, sun}}), QString());
        const auto texts = [](int side, const QJsonObject &known) {
            const QSize frame(side, side);
            return SolarPosition::pixelText({511.499999, 518.500001}, frame, known) +
                   SolarPosition::sizeText({8, 8}, frame, known);
        };
        QVERIFY(texts(1024, sun).startsWith("Cursor: x +0.000, y +0.000, r 0.000"_s));
        QCOMPARE(texts(0, sun), QString());
        for (const char *key : {"width", "rsun"}) {
            QJsonObject poor = sun;
            poor.remove(QLatin1String(key));
            QCOMPARE(texts(1024, poor), QString());
        }
    }

    void linkOutOfTheSessionIsReplaced()
    {
        const TestSession session;
        const TestSession outside;
        const auto before = outside.contents();
        QFile::link(outside.filePath("session.json"), session.filePath("rois.json"));
        QDir(session.path()).mkdir("rois.json.new"_s); // in the way
        QVERIFY(!RoiSet::save({}, session.path()));
        QVERIFY(QFileInfo(session.filePath("rois.json")).isSymLink()); // the link is not lost
        QDir(session.path()).rmdir("rois.json.new"_s);
        QFile::link(outside.filePath("session.json"), session.filePath("rois.json.new"));
        QVERIFY(RoiSet::save({}, session.path()));
        QCOMPARE(outside.contents(), before);
        QVERIFY(!QFileInfo(session.filePath("rois.json")).isSymLink());
    }
};

QTEST_GUILESS_MAIN(TestStoredSession)
#include "tst_storedsession.moc"
