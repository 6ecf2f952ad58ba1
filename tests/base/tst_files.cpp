#include "base/jsonfile.h"
#include "base/runtimeconfig.h"
#include "tests/support/literals.h"
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
        QDir(TestFolder::path("sys"_s)).removeRecursively();
        QCOMPARE(JsonFile::save(m_path, m_old), JsonFile::SaveResult::Saved);
    }

    void firstStart()
    {
        const QString curl = TestFolder::path("bin/curl"_s);
        QCOMPARE(RuntimeConfig::curlPath(), curl); // a missing file reads as the defaults
        QCOMPARE(RuntimeConfig::preflightProbeSeconds(), 7200);
        QVERIFY(RuntimeConfig::allowInsecureFallback());
        QVERIFY(!QFile::exists(RuntimeConfig::configFilePath()));
        RuntimeConfig::ensureRuntimeConfig();
        QVERIFY(QDir(TestFolder::path("out"_s)).exists());
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
        QCOMPARE(RuntimeConfig::outputRoot(), "/data/Sch\u00f6ne Sonne, a"_s);
        QCOMPARE(RuntimeConfig::preset("video/fps"_s).toInt(), 50);
        QVERIFY(!RuntimeConfig::preset("video/crf"_s).isValid());
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
        setKey("network/apiBase", "http://[::1]:80/v2///"_s);
        QCOMPARE(RuntimeConfig::apiBase(), "http://[::1]:80/v2"_s);
        setKey("paths/curl", "/opt//x/./../curl"_s);
        QCOMPARE(RuntimeConfig::curlPath(), "/opt/curl"_s);

        const QString workingDirectory = QDir::currentPath();
        QVERIFY(QDir::setCurrent(QDir::rootPath()));
        setKey("paths/curl", "tools/curl"_s);
        QCOMPARE(RuntimeConfig::curlPath(), TestFolder::path("tools/curl"_s));
        QVERIFY(QDir::setCurrent(workingDirectory));
    }

    void diskFullHalfWayKeepsTheOldFile()
    {
        for (const int length : {100'000, 2'000}) { // seen when written, when the buffer is flushed
            const QJsonObject large{{"text"_s, QString(length, QLatin1Char('x'))}};
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
        QCOMPARE(errorText, "unterminated object"_s);
        const QString nowhere = m_folder.filePath("no folder/x.json"_s);
        QCOMPARE(JsonFile::save(nowhere, {}), JsonFile::SaveResult::CannotOpen);
        QVERIFY(!JsonFile::load(nowhere, &errorText) && !JsonFile::load(nowhere));
        QCOMPARE(errorText, "No such file or directory"_s);
    }

private:
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath("session.json"_s);
    QJsonObject m_old{{"Sch\u00f6n"_s, 9007199254740991.0}};
};

QTEST_GUILESS_MAIN(TestFiles)
#include "tst_files.moc"
