#include "base/jsonfile.h"
#include "simulator/archive/archive.h"
#include "simulator/service/server.h"
#include "tests/support/literals.h"

#include <QtTest>

/// The program itself, in a folder where it never ran before.
class TestProgram final : public QObject
{
    Q_OBJECT

private slots:
    void firstStartCompletesItsFolderAndFetchesTheCatalog()
    {
        Simulator::Server server(Simulator::Archive::sample());
        QVERIFY(server.start());
        const QTemporaryDir folder;
        const QDir home(folder.path());
        QVERIFY(home.mkpath("sys"_s) && home.mkpath("bin"_s));
        const QString program = home.filePath("orvik"_s);
        QVERIFY(QFile::copy(QStringLiteral(ORVIK_PROGRAM), program)); // a link would lead back
        const QString ffmpeg = home.filePath("bin/ffmpeg"_s);
        const QString nowhere = home.filePath("missing/ffmpeg"_s);
        QVERIFY(QFile::link(nowhere, ffmpeg)); // and is not to be touched
        QSettings ini(home.filePath("sys/orvik.ini"_s), QSettings::IniFormat);
        ini.setValue("network/apiBase"_s, server.baseUrl());
        ini.sync();

        QProcess orvik;
        orvik.setProcessChannelMode(QProcess::MergedChannels);
        orvik.start(program, {});
        const QString cache = home.filePath("sys/helioviewer_sources.json"_s);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(cache) || orvik.state() == QProcess::NotRunning,
                                 30'000);
        QCOMPARE(orvik.state(), QProcess::Running);
        orvik.terminate(); // as a logout does
        QVERIFY(orvik.waitForFinished());
        QCOMPARE(orvik.exitStatus(), QProcess::NormalExit);

        QVERIFY(!orvik.readAll().contains("QObject::")); // a lost connection
        QVERIFY(JsonFile::load(cache));
        ini.sync();
        QCOMPARE(ini.value("network/apiBase"_s).toString(), server.baseUrl());
        QCOMPARE(ini.allKeys().size(), 13);
        QVERIFY(home.exists("out"_s));
        QVERIFY(home.exists("bin/curl"_s)); // by which the catalog has come
        QCOMPARE(QFile::symLinkTarget(ffmpeg), nowhere);
    }
};

QTEST_GUILESS_MAIN(TestProgram)
#include "tst_program.moc"
