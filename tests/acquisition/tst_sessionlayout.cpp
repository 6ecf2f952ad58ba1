#include "acquisition/sessionlayout.h"
#include "session/acquisitionsettings.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

class TestSessionLayout : public QObject
{
    Q_OBJECT

private slots:
    void everyDatasourceHasItsOwnFolder();
};

void TestSessionLayout::everyDatasourceHasItsOwnFolder()
{
    const QTemporaryDir root;
    AcquisitionSettings settings;
    settings.startUtc = settings.endUtc = QDateTime(QDate(2024, 1, 1), QTime(0, 0), Qt::UTC);
    const QStringList nicknames = {QStringLiteral("RHESSI"), QStringLiteral("Rhessi "),
                                   QStringLiteral(" SUVI  195 / x"), QStringLiteral(" ")};
    for (int sourceId = 0; sourceId < nicknames.size(); ++sourceId)
        settings.sources.append({sourceId, nicknames.at(sourceId), QString()});
    settings.sources.append(settings.sources.first()); // listed twice, it keeps its folder

    const auto session = SessionLayout::create(root.path(), settings, nullptr);
    QVERIFY(session);
    const QStringList names = {
        QStringLiteral("RHESSI_20240101_000000"), QStringLiteral("Rhessi_20240101_000000_1"),
        QStringLiteral("SUVI_195_x_20240101_000000"), QStringLiteral("source_20240101_000000")};
    QCOMPARE(session->sources.size(), names.size());
    for (int sourceId = 0; sourceId < names.size(); ++sourceId) {
        const SourceFolder folder = session->sources.value(sourceId);
        QCOMPARE(folder.name, names.at(sourceId));
        QCOMPARE(folder.directory, session->directory + QLatin1Char('/') + folder.name);
        QVERIFY(QDir(folder.directory + QStringLiteral("/video_frames")).exists());
    }
}

QTEST_GUILESS_MAIN(TestSessionLayout)
#include "tst_sessionlayout.moc"
