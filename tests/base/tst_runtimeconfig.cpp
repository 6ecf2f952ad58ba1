#include "base/runtimeconfig.h"

#include "tests/support/testfolder.h"

#include <QtTest>

namespace {

QByteArray iniText()
{
    QFile file(RuntimeConfig::configFilePath());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeIni(const QByteArray &text)
{
    QFile file(RuntimeConfig::configFilePath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(text), text.size());
}

template<typename Value>
void setKey(const char *key, const Value &value)
{
    TestFolder::setKey(QString::fromLatin1(key), value);
}

} // namespace

class TestRuntimeConfig : public QObject
{
    Q_OBJECT

private slots:
    void init() { QDir(TestFolder::path(QStringLiteral("sys"))).removeRecursively(); }

    void commaWithoutQuotes()
    {
        setKey("paths/output", QStringList{QStringLiteral("/tmp/a"), QStringLiteral("b")});
        QCOMPARE(RuntimeConfig::outputRoot(), QStringLiteral("/tmp/a, b"));
    }

    void firstStart()
    {
        const QString curl = TestFolder::path(QStringLiteral("bin/curl"));
        QCOMPARE(RuntimeConfig::curlPath(), curl); // a missing file reads as the defaults
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
        QCOMPARE(RuntimeConfig::curlPath(), curl);
    }

    void valuesOfTheUserStay()
    {
        RuntimeConfig::ensureRuntimeConfig();
        writeIni("[network]\nconnectTimeoutSeconds=5\napiBase=\nmaxTransferSeconds=long\n"
                 "[paths]\noutput=/data/Sch\u00f6ne Sonne\n[video]\nfps=50\n");
        RuntimeConfig::ensureRuntimeConfig();
        QCOMPARE(RuntimeConfig::connectTimeoutSeconds(), 5);
        QCOMPARE(RuntimeConfig::apiBase(), QString()); // empty is a value too
        QCOMPARE(RuntimeConfig::maxTransferSeconds(), 0);
        QCOMPARE(RuntimeConfig::outputRoot(), QStringLiteral("/data/Sch\u00f6ne Sonne"));
        QCOMPARE(RuntimeConfig::preset(QStringLiteral("video/fps")).toInt(), 50);
        QVERIFY(!RuntimeConfig::preset(QStringLiteral("video/crf")).isValid());
        QCOMPARE(iniText().count('='), 14);
        QVERIFY(iniText().contains("\noutput=/data/Sch\u00f6ne Sonne\n"));
    }

    void boundsOfNumbers()
    {
        setKey("network/preflightParallelRequests", 0);
        setKey("timing/preflightProbeSeconds", 60);
        setKey("timing/aiaMaxTimeErrorSeconds", -1);
        setKey("timing/suviMaxTimeErrorSeconds", -1);
        QCOMPARE(RuntimeConfig::preflightParallelRequests(), 1);
        QCOMPARE(RuntimeConfig::preflightProbeSeconds(), 300);
        QCOMPARE(RuntimeConfig::aiaMaxTimeErrorSeconds(), 0);
        QCOMPARE(RuntimeConfig::suviMaxTimeErrorSeconds(), 0);
        setKey("network/preflightParallelRequests", 10); // takes effect at once
        setKey("timing/preflightProbeSeconds", 86401);
        QCOMPARE(RuntimeConfig::preflightParallelRequests(), 6);
        QCOMPARE(RuntimeConfig::preflightProbeSeconds(), 86400);
        TestFolder::clearKeys();
        QCOMPARE(RuntimeConfig::preflightProbeSeconds(), 7200);
    }

    void addressesAndPaths()
    {
        for (const char *base :
             {"http://[::1]:80/v2", "http://[::1]:80/v2/", "http://[::1]:80/v2///"}) {
            setKey("network/apiBase", QString::fromLatin1(base));
            QCOMPARE(RuntimeConfig::apiBase(), QStringLiteral("http://[::1]:80/v2"));
        }
        setKey("paths/curl", QStringLiteral("/opt//x/./../curl"));
        QCOMPARE(RuntimeConfig::curlPath(), QStringLiteral("/opt/curl"));

        const QString workingDirectory = QDir::currentPath();
        QVERIFY(QDir::setCurrent(QDir::rootPath()));
        setKey("paths/curl", QStringLiteral("tools/curl"));
        QCOMPARE(RuntimeConfig::curlPath(), TestFolder::path(QStringLiteral("tools/curl")));
        QVERIFY(QDir::setCurrent(workingDirectory));
    }
};

QTEST_GUILESS_MAIN(TestRuntimeConfig)
#include "tst_runtimeconfig.moc"
