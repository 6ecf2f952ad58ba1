#include "roi/roiset.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

Q_DECLARE_METATYPE(QVector<QRectF>)

namespace {

bool write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The regions of a session and their file.
class TestRoiSet : public QObject
{
    Q_OBJECT

private slots:
    void saved()
    {
        const QTemporaryDir session;
        const QVector<Roi> rois = {{QStringLiteral("Flare"), QRectF(0.1, 0.2, 0.3, 0.4), true, -90},
                                   {QStringLiteral("a/b\n<i>%1"), QRectF(0, 0, 1, 1), false, 0}};
        QVERIFY(RoiSet::save(rois, session.path()));

        const QByteArray text = read(RoiSet::filePath(session.path()));
        const QString name = QDir(session.path()).dirName();
        QVERIFY(text.startsWith("{\n    \"application\": \"Orvik\",\n"
                                "    \"coordinateSystem\": \"normalized-full-frame\",\n"
                                "    \"formatVersion\": 2,\n    \"rois\": [\n"));
        QVERIFY(text.endsWith("    \"session\": \"" + name.toUtf8() + "\"\n}\n"));

        const QVector<Roi> loaded = RoiSet::load(session.path());
        QCOMPARE(loaded.size(), 2);
        for (int row = 0; row < 2; ++row) {
            QCOMPARE(loaded.at(row).name, rois.at(row).name);
            QCOMPARE(loaded.at(row).rect, rois.at(row).rect);
            QCOMPARE(loaded.at(row).enabled, rois.at(row).enabled);
            QCOMPARE(loaded.at(row).rotation, rois.at(row).rotation);
        }
    }

    void loaded_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QVector<QRectF>>("rects");
        const auto row = [](const char *title, const char *json, const QStringList &names,
                            const QVector<QRectF> &rects) {
            QTest::newRow(title) << QByteArray(json) << names << rects;
        };
        row("drawn to the left", R"({"rois":[{"name":"l","x":0.5,"width":-0.2,"height":0.1}]})",
            {QStringLiteral("l")}, {QRectF(0.3, 0, 0.2, 0.1)});
        row("without an area", R"({"rois":[{"width":0,"height":1},{"height":1},{}]})", {}, {});
        row("names count what was kept",
            R"({"rois":[{"width":0},{"width":1,"height":1},{"name":7,"width":2,"height":3}]})",
            {QStringLiteral("ROI 1"), QStringLiteral("ROI 2")},
            {QRectF(0, 0, 1, 1), QRectF(0, 0, 2, 3)});
        row("of other types", R"({"rois":[3,null,"x",[],{"x":"1","width":"1","height":true}]})", {},
            {});
        row("beyond doubles", R"({"rois":[{"x":1e999,"width":1,"height":1}]})", {}, {});
        row("no list", R"({"rois":{"width":1}})", {}, {});
        row("no object", "[]", {}, {});
        row("junk behind it", R"({"rois":[{"width":1,"height":1}]}})", {}, {});
    }
    void loaded()
    {
        QFETCH(QByteArray, json);
        QFETCH(QStringList, names);
        QFETCH(QVector<QRectF>, rects);
        const QTemporaryDir session;
        QVERIFY(write(RoiSet::filePath(session.path()), json));
        const QVector<Roi> rois = RoiSet::load(session.path());
        QCOMPARE(rois.size(), rects.size());
        for (int index = 0; index < rois.size(); ++index) {
            QCOMPARE(rois.at(index).name, names.at(index));
            QCOMPARE(rois.at(index).rect, rects.at(index));
            QVERIFY(rois.at(index).enabled);
            QCOMPARE(rois.at(index).rotation, 0);
        }
    }

    void cutOffFileIsAnEmptySet()
    {
        const QTemporaryDir session;
        const QVector<Roi> rois = {{QStringLiteral("ROI 1"), QRectF(0, 0, 1, 1), true, 90}};
        QVERIFY(RoiSet::save(rois, session.path()));
        const QByteArray whole = read(RoiSet::filePath(session.path())).trimmed();
        for (int length = 0; length < whole.size(); ++length) {
            QVERIFY(write(RoiSet::filePath(session.path()), whole.left(length)));
            QVERIFY2(RoiSet::load(session.path()).isEmpty(), whole.left(length).constData());
        }
    }

    void refusedSaves()
    {
        QString errorText;
        QVERIFY(!RoiSet::save({}, QString(), &errorText));
        QCOMPARE(errorText, QStringLiteral("No session is loaded."));
        QVERIFY(!RoiSet::save({}, QStringLiteral("/nonexistent"), &errorText));
        QCOMPARE(errorText, QStringLiteral("Cannot create rois.json in the session directory."));
    }

    void linkOutOfTheSessionIsReplaced()
    {
        const QTemporaryDir outside;
        const QTemporaryDir session;
        const QString target = outside.filePath(QStringLiteral("precious"));
        QVERIFY(write(target, "kept"));
        QVERIFY(QFile::link(target, RoiSet::filePath(session.path())));
        QVERIFY(RoiSet::save({}, session.path()));
        QCOMPARE(read(target), QByteArray("kept"));
        QVERIFY(!QFileInfo(RoiSet::filePath(session.path())).isSymLink());
    }
};

QTEST_APPLESS_MAIN(TestRoiSet)
#include "tst_roiset.moc"
