#include "simulator/archive/archive.h"
#include "simulator/service/server.h"
#include "tests/support/testfolder.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QProcess>
#include <QSettings>
#include <QtTest>

/// The program itself, in a folder where it never ran before.
class TestProgram : public QObject
{
    Q_OBJECT

private slots:
    void firstStartCompletesItsFolderAndFetchesTheCatalog();
};

void TestProgram::firstStartCompletesItsFolderAndFetchesTheCatalog()
{
    Simulator::Server server(Simulator::Archive::sample());
    QString error;
    QVERIFY2(server.start(&error), qPrintable(error));

    const QTemporaryDir folder;
    const QDir home(folder.path());
    QVERIFY(home.mkpath(QStringLiteral("sys")) && home.mkpath(QStringLiteral("bin")));
    const QString program = home.filePath(QStringLiteral("orvik"));
    QVERIFY(QFile::copy(QStringLiteral(ORVIK_PROGRAM), program)); // a link would lead back
    QVERIFY(QFile::link(QFileInfo(TestFolder::path(QStringLiteral("bin/curl"))).canonicalFilePath(),
                        home.filePath(QStringLiteral("bin/curl"))));
    QSettings ini(home.filePath(QStringLiteral("sys/orvik.ini")), QSettings::IniFormat);
    ini.setValue(QStringLiteral("network/apiBase"), server.baseUrl());
    ini.sync();

    QProcess orvik;
    orvik.setProcessChannelMode(QProcess::MergedChannels);
    orvik.start(program, {});
    const QString cache = home.filePath(QStringLiteral("sys/helioviewer_sources.json"));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(cache) || orvik.state() == QProcess::NotRunning, 30'000);
    QCOMPARE(orvik.state(), QProcess::Running);
    orvik.kill();
    QVERIFY(orvik.waitForFinished());

    const QString said = QString::fromLocal8Bit(orvik.readAll());
    QVERIFY2(!said.contains(QStringLiteral("QObject::")), qPrintable(said)); // a lost connection
    QFile catalog(cache);
    QVERIFY(catalog.open(QIODevice::ReadOnly));
    QVERIFY(QJsonDocument::fromJson(catalog.readAll()).isObject());
    ini.sync();
    QCOMPARE(ini.value(QStringLiteral("network/apiBase")).toString(), server.baseUrl());
    QCOMPARE(ini.allKeys().size(), 13);
    QVERIFY(home.exists(QStringLiteral("out")));
}

QTEST_GUILESS_MAIN(TestProgram)
#include "tst_program.moc"
