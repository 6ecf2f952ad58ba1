#include "base/jsonfile.h"
#include "base/runtimeconfig.h"
#include "tests/support/testfolder.h"

#include <QJsonObject>
#include <QtTest>

namespace {

QByteArray iniText()
{
    QFile file(RuntimeConfig::configFilePath());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void setKey(const char *key, const QVariant &value)
{
    TestFolder::setKey(QString::fromLatin1(key), value);
}

} // namespace

/// The settings of the machine, and JSON.
class TestFiles : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QDir(TestFolder::path(QStringLiteral("sys"))).removeRecursively();
        QCOMPARE(JsonFile::save(m_path, m_old), JsonFile::SaveResult::Saved);
    }

    void firstStart()
    {
        const QString curl = TestFolder::path(QStringLiteral("bin/curl"));
        QCOMPARE(RuntimeConfig::curlPath(), curl); // a missing file reads as the defaults
        QCOMPARE(RuntimeConfig::preflightProbeSeconds(), 7200);
        QVERIFY(RuntimeConfig::allowInsecureFallback());
        QVERIFY(!QFile::exists(RuntimeConfig::configFilePath()));
        RuntimeConfig::ensureRuntimeConfig();
        QVERIFY(QDir(TestFolder::path(QStringLiteral("out"))).exists());
        QCOMPARE(iniText(), QByteArray(R"([network]
allowInsecureFallback=true
apiBase=https://api.helioviewer.org/v2
caBundle=sys/cacert.pem
connectTimeoutSeconds=20
maxTransferSeconds=180
preflightParallelRequests=3

[paths]
catalog=sys/helioviewer_sources.json
curl=bin/curl
ffmpeg=bin/ffmpeg
output=out

[timing]
aiaMaxTimeErrorSeconds=30
preflightProbeSeconds=7200
suviMaxTimeErrorSeconds=900
)"));
    }

    void valuesOfTheUserStay()
    {
        RuntimeConfig::ensureRuntimeConfig();
        QFile file(RuntimeConfig::configFilePath());
        QVERIFY(file.open(QIODevice::WriteOnly) &&
                file.write("[network]\nconnectTimeoutSeconds=5\napiBase=\nmaxTransferSeconds=long\n"
                           "[paths]\noutput=/data/Sch\u00f6ne Sonne, a\n[video]\nfps=50\n") > 0);
        file.close();
        RuntimeConfig::ensureRuntimeConfig();
        QCOMPARE(RuntimeConfig::connectTimeoutSeconds(), 5);
        QCOMPARE(RuntimeConfig::apiBase(), QString()); // empty is a value too
        QCOMPARE(RuntimeConfig::maxTransferSeconds(), 0);
        QCOMPARE(RuntimeConfig::outputRoot(), QStringLiteral("/data/Sch\u00f6ne Sonne, a"));
        QCOMPARE(RuntimeConfig::preset(QStringLiteral("video/fps")).toInt(), 50);
        QVERIFY(!RuntimeConfig::preset(QStringLiteral("video/crf")).isValid());
        QCOMPARE(iniText().count('='), 14);
        QVERIFY(iniText().contains("/data/Sch\u00f6ne Sonne"));
    }

    void boundsOfNumbers()
    {
        for (const auto &[given, parallel, probe, tolerance] :
             {std::array{-1, 1, 300, 0}, std::array{5, 5, 300, 5}, std::array{301, 6, 301, 301},
              std::array{86401, 6, 86400, 86401}}) {
            for (const char *key :
                 {"network/preflightParallelRequests", "timing/preflightProbeSeconds",
                  "timing/aiaMaxTimeErrorSeconds", "timing/suviMaxTimeErrorSeconds"})
                setKey(key, given); // takes effect at once
            QCOMPARE(RuntimeConfig::preflightParallelRequests(), parallel);
            QCOMPARE(RuntimeConfig::preflightProbeSeconds(), probe);
            QCOMPARE(RuntimeConfig::aiaMaxTimeErrorSeconds(), tolerance);
            QCOMPARE(RuntimeConfig::suviMaxTimeErrorSeconds(), tolerance);
        }
    }

    void addressesAndPaths()
    {
        setKey("network/apiBase", QStringLiteral("http://[::1]:80/v2///"));
        QCOMPARE(RuntimeConfig::apiBase(), QStringLiteral("http://[::1]:80/v2"));
        setKey("paths/curl", QStringLiteral("/opt//x/./../curl"));
        QCOMPARE(RuntimeConfig::curlPath(), QStringLiteral("/opt/curl"));

        const QString workingDirectory = QDir::currentPath();
        QVERIFY(QDir::setCurrent(QDir::rootPath()));
        setKey("paths/curl", QStringLiteral("tools/curl"));
        QCOMPARE(RuntimeConfig::curlPath(), TestFolder::path(QStringLiteral("tools/curl")));
        QVERIFY(QDir::setCurrent(workingDirectory));
    }

    void diskFullHalfWayKeepsTheOldFile()
    {
        for (const int length : {100'000, 2'000}) { // seen when written, when the buffer is flushed
            const QJsonObject large{{QStringLiteral("text"), QString(length, QLatin1Char('x'))}};
            TestFolder::leaveRoom(1000);
            const JsonFile::SaveResult result = JsonFile::save(m_path, large);
            TestFolder::leaveRoom();
            QCOMPARE(result, JsonFile::SaveResult::CannotCommit);
            QVERIFY(JsonFile::load(m_path) == m_old);
            QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files).size(), 1); // nothing temporary
        }
    }

    void failureTellsItsReason()
    {
        QString errorText;
        QVERIFY(QFile::resize(m_path, 5)); // cut off
        QVERIFY(!JsonFile::load(m_path, &errorText));
        QCOMPARE(errorText, QStringLiteral("unterminated object"));
        const QString nowhere = m_folder.filePath(QStringLiteral("no folder/x.json"));
        QCOMPARE(JsonFile::save(nowhere, {}), JsonFile::SaveResult::CannotOpen);
        QVERIFY(!JsonFile::load(nowhere, &errorText) && !JsonFile::load(nowhere));
        QCOMPARE(errorText, QStringLiteral("No such file or directory"));
    }

private:
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("session.json"));
    QJsonObject m_old{{QStringLiteral("Sch\u00f6n"), 9007199254740991.0}};
};

QTEST_GUILESS_MAIN(TestFiles)
#include "tst_files.moc"
