#include "roi/roiset.h"

#include "tests/roi/testsession.h"

#include <QDir>
#include <QFileInfo>
#include <QtTest>

/// The regions of a session and their file.
class TestRoiSet : public QObject
{
    Q_OBJECT

private slots:
    void savedAndLoaded()
    {
        const TestSession session;
        QVERIFY(RoiSet::save({{QStringLiteral("Flare"), QRectF(0.1, 0.2, 0.3, 0.4), true, -90},
                              {QStringLiteral("a/b\n<i>%1"), QRectF(0, 0, 1, 1), false, 0}},
                             session.path()));
        const QByteArray text = session.read("rois.json");
        const QByteArray name = QFileInfo(session.path()).fileName().toUtf8();
        QVERIFY(text.startsWith("{\n    \"application\": \"Orvik\",\n"
                                "    \"coordinateSystem\": \"normalized-full-frame\",\n"
                                "    \"formatVersion\": 2,\n    \"rois\": [\n"));
        QVERIFY(text.endsWith("    \"session\": \"" + name + "\"\n}\n"));

        const QVector<Roi> loaded = RoiSet::load(session.path());
        QCOMPARE(loaded.size(), 2);
        QCOMPARE(loaded.at(1).name, QStringLiteral("a/b\n<i>%1"));
        for (int length = 0; length < text.size() - 2; ++length) { // a file cut off
            session.write("rois.json", text.left(length));
            QVERIFY2(RoiSet::load(session.path()).isEmpty(), text.left(length).constData());
        }
    }

    void oddElements()
    {
        const TestSession session;
        session.write("rois.json",
                      R"({"rois":[3, null, "x", [], {}, {"width":0,"height":1},
            {"width":"1","height":true}, {"x":-1e308,"width":-1e308,"height":1},
            {"x":0.5,"width":-0.2,"height":0.1}, {"name":7,"width":2,"height":3}]})");
        const QVector<Roi> rois = RoiSet::load(session.path());
        QCOMPARE(rois.size(), 2);
        QCOMPARE(rois.at(0).rect, QRectF(0.3, 0, 0.2, 0.1)); // drawn to the left
        QCOMPARE(rois.at(1).name, QStringLiteral("ROI 2"));  // counts what was kept
        QVERIFY(rois.at(1).enabled && rois.at(1).rotation == 0);
        for (const char *other : {R"({"rois":{"width":1}})", "[]", "{}}"}) {
            session.write("rois.json", other);
            QVERIFY(RoiSet::load(session.path()).isEmpty());
        }
    }

    void linkOutOfTheSessionIsReplaced()
    {
        const TestSession session;
        const TestSession outside;
        const auto before = outside.contents();
        QFile::link(outside.filePath("session.json"), session.filePath("rois.json"));
        QDir(session.path()).mkdir(QStringLiteral("rois.json.new")); // in the way
        QVERIFY(!RoiSet::save({}, session.path()));
        QVERIFY(QFileInfo(session.filePath("rois.json")).isSymLink()); // the link is not lost
        QDir(session.path()).rmdir(QStringLiteral("rois.json.new"));
        QVERIFY(RoiSet::save({}, session.path()));
        QCOMPARE(outside.contents(), before);
        QVERIFY(!QFileInfo(session.filePath("rois.json")).isSymLink());
    }
};

QTEST_GUILESS_MAIN(TestRoiSet)
#include "tst_roiset.moc"
