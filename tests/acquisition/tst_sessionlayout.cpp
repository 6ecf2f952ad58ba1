#include "acquisition/acquisitionsettings.h"
#include "acquisition/sessionlayout.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

namespace {

AcquisitionSettings sixHours(const QVector<DataSource> &sources = {})
{
    AcquisitionSettings settings;
    settings.startUtc = QDateTime(QDate(2024, 1, 1), QTime(0, 0), Qt::UTC);
    settings.endUtc = settings.startUtc.addSecs(21600);
    settings.sources = sources;
    return settings;
}

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

} // namespace

class TestSessionLayout : public QObject
{
    Q_OBJECT

private slots:
    void takenNamesAreCountedUp();
    void failureSaysWhatCannotBeCreated();
    void everyDatasourceHasItsOwnFolder();
};

void TestSessionLayout::takenNamesAreCountedUp()
{
    const QTemporaryDir root;
    const QDir dir(root.path());
    const QString name = QStringLiteral("20240101_000000__20240101_060000");
    write(dir.filePath(name + QStringLiteral("_2")), "a file is in the way");
    QVERIFY(QFile::link(QStringLiteral("/nowhere"), dir.filePath(name + QStringLiteral("_4"))));
    for (const QString &suffix : {QString(), QStringLiteral("_3"), QStringLiteral("_5")}) {
        const auto session =
            SessionLayout::create(dir.filePath(QStringLiteral(".")), sixHours(), nullptr);
        QVERIFY(session);
        QCOMPARE(QDir::cleanPath(session->directory), dir.filePath(name + suffix));
        QVERIFY(QFileInfo(session->directory).isDir());
    }
}

void TestSessionLayout::failureSaysWhatCannotBeCreated()
{
    const QTemporaryDir root;
    const QString file = QDir(root.path()).filePath(QStringLiteral("file"));
    write(file, "x");
    QString error;
    QVERIFY(!SessionLayout::create(file, sixHours(), &error));
    QCOMPARE(error, QStringLiteral("Cannot create output root directory."));
    QVERIFY(!SessionLayout::create(file + QStringLiteral("/deeper"), sixHours(), nullptr));
    // No directory can be made in the system's table of processes, not even by root.
    QVERIFY(!SessionLayout::create(QStringLiteral("/proc/self"), sixHours(), &error));
    QCOMPARE(error, QStringLiteral("Cannot create session directory."));
}

void TestSessionLayout::everyDatasourceHasItsOwnFolder()
{
    const QString rhessi = QStringLiteral("RHESSI");
    const QTemporaryDir root;
    const auto session = SessionLayout::create(
        root.path(),
        sixHours(
            {{98, rhessi, {}}, {0, rhessi, {}}, {98, rhessi, {}}, {5, QStringLiteral(" "), {}}}),
        nullptr);
    QVERIFY(session);
    QCOMPARE(session->sources.size(), 3);
    const QMap<int, QString> names = {{98, QStringLiteral("RHESSI_20240101_000000")},
                                      {0, QStringLiteral("RHESSI_20240101_000000_0")},
                                      {5, QStringLiteral("source_20240101_000000")}};
    for (auto name = names.cbegin(); name != names.cend(); ++name) {
        const SourceFolder folder = session->sources.value(name.key());
        QCOMPARE(folder.name, *name);
        QCOMPARE(folder.videoFramesDirectory,
                 session->directory + QLatin1Char('/') + *name + QStringLiteral("/video_frames"));
        QVERIFY(QFileInfo(folder.videoFramesDirectory).isDir());
        QCOMPARE(SessionLayout::filmPath(folder),
                 folder.directory + QLatin1Char('/') + *name + QStringLiteral(".mp4"));
    }
}

QTEST_GUILESS_MAIN(TestSessionLayout)
#include "tst_sessionlayout.moc"
