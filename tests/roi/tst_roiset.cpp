#include "roi/roiset.h"

#include "tests/roi/testsession.h"

#include <QDir>
#include <QFileInfo>
#include <QtTest>

Q_DECLARE_METATYPE(QVector<QRectF>)

/// The regions of a session and their file.
class TestRoiSet : public QObject
{
    Q_OBJECT

private slots:
    void savedAndLoaded()
    {
        const TestSession session;
        const QVector<Roi> rois = {{u"Flare"_s, QRectF(0.1, 0.2, 0.3, 0.4), true, -90},
                                   {u"a/b\n<i>%1"_s, QRectF(0, 0, 1, 1), false, 0}};
        QVERIFY(RoiSet::save(rois, session.path()));
        const QByteArray text = session.read(u"rois.json"_s);
        const QByteArray name = QDir(session.path()).dirName().toUtf8();
        QVERIFY(text.startsWith("{\n    \"application\": \"Orvik\",\n"
                                "    \"coordinateSystem\": \"normalized-full-frame\",\n"
                                "    \"formatVersion\": 2,\n    \"rois\": [\n"));
        QVERIFY(text.endsWith("    \"session\": \"" + name + "\"\n}\n"));

        const QVector<Roi> loaded = RoiSet::load(session.path());
        QCOMPARE(loaded.size(), 2);
        for (int row = 0; row < 2; ++row) {
            QCOMPARE(loaded.at(row).name, rois.at(row).name);
            QCOMPARE(loaded.at(row).rect, rois.at(row).rect);
            QCOMPARE(loaded.at(row).enabled, rois.at(row).enabled);
            QCOMPARE(loaded.at(row).rotation, rois.at(row).rotation);
        }
        for (int length = 0; length < text.size() - 2; ++length) { // a file cut off
            session.write(u"rois.json"_s, text.left(length));
            QVERIFY2(RoiSet::load(session.path()).isEmpty(), text.left(length).constData());
        }
    }

    void oddFiles_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QVector<QRectF>>("rects");
        const auto row = [](const char *title, const char *json, const QVector<QRectF> &rects) {
            QTest::newRow(title) << QByteArray(json) << rects;
        };
        row("drawn to the left", R"({"rois":[{"x":0.5,"width":-0.2,"height":0.1}]})",
            {QRectF(0.3, 0, 0.2, 0.1)});
        row("without an area", R"({"rois":[{"width":0,"height":1},{"height":1},{}]})", {});
        row("names count what was kept",
            R"({"rois":[{"width":0},{"width":1,"height":1},{"name":7,"width":2,"height":3}]})",
            {QRectF(0, 0, 1, 1), QRectF(0, 0, 2, 3)});
        row("other types", R"({"rois":[3,null,"x",[],{"width":"1","height":true}]})", {});
        row("beyond doubles", R"({"rois":[{"x":1e999,"width":1,"height":1}]})", {});
        row("no list", R"({"rois":{"width":1}})", {});
        row("junk behind it", R"({"rois":[{"width":1,"height":1}]}})", {});
    }
    void oddFiles()
    {
        QFETCH(QByteArray, json);
        QFETCH(QVector<QRectF>, rects);
        const TestSession session;
        session.write(u"rois.json"_s, json);
        const QVector<Roi> rois = RoiSet::load(session.path());
        QCOMPARE(rois.size(), rects.size());
        for (int index = 0; index < rois.size(); ++index) {
            QCOMPARE(rois.at(index).name, u"ROI %1"_s.arg(index + 1));
            QCOMPARE(rois.at(index).rect, rects.at(index));
            QVERIFY(rois.at(index).enabled && rois.at(index).rotation == 0);
        }
    }

    void refusedSaves()
    {
        QString errorText;
        QVERIFY(!RoiSet::save({}, QString(), &errorText));
        QCOMPARE(errorText, u"No session is loaded."_s);
        QVERIFY(!RoiSet::save({}, u"/nonexistent"_s, &errorText));
        QCOMPARE(errorText, u"Cannot create rois.json in the session directory."_s);
    }

    void linkOutOfTheSessionIsReplaced()
    {
        const TestSession session;
        const TestSession outside;
        outside.write(u"precious"_s, "kept");
        QVERIFY(QFile::link(outside.filePath(u"precious"_s), session.filePath(u"rois.json"_s)));
        QVERIFY(RoiSet::save({}, session.path()));
        QCOMPARE(outside.read(u"precious"_s), QByteArray("kept"));
        QVERIFY(!QFileInfo(session.filePath(u"rois.json"_s)).isSymLink());
    }
};

QTEST_GUILESS_MAIN(TestRoiSet)
#include "tst_roiset.moc"
