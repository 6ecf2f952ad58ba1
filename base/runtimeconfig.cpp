#include "base/runtimeconfig.h"

#include <QCoreApplication>
#include <QDir>
#include <QSettings>
#include <QVariant>

#include <algorithm>

namespace {

#ifdef Q_OS_WIN
#define ORVIK_EXE_SUFFIX ".exe"
#else
#define ORVIK_EXE_SUFFIX ""
#endif

struct Setting
{
    const char *key;
    QVariant defaultValue;
};

// In the order in which a new file receives them.
enum Key {
    Curl,
    Ffmpeg,
    Output,
    Catalog,
    ApiBase,
    ConnectTimeout,
    MaxTransfer,
    CaBundle,
    InsecureFallback,
    PreflightParallel,
    PreflightProbe,
    AiaMaxTimeError,
    SuviMaxTimeError,
    KeyCount
};

const Setting &setting(int key)
{
    static const Setting settings[KeyCount] = {
        {"paths/curl", QStringLiteral("bin/curl" ORVIK_EXE_SUFFIX)},
        {"paths/ffmpeg", QStringLiteral("bin/ffmpeg" ORVIK_EXE_SUFFIX)},
        {"paths/output", QStringLiteral("out")},
        {"paths/catalog", QStringLiteral("sys/helioviewer_sources.json")},
        {"network/apiBase", QStringLiteral("https://api.helioviewer.org/v2")},
        {"network/connectTimeoutSeconds", 20},
        {"network/maxTransferSeconds", 180},
        {"network/caBundle", QStringLiteral("sys/cacert.pem")},
        {"network/allowInsecureFallback", true},
        {"network/preflightParallelRequests", 3},
        {"timing/preflightProbeSeconds", 7200},
        {"timing/aiaMaxTimeErrorSeconds", 30},
        {"timing/suviMaxTimeErrorSeconds", 900},
    };
    return settings[key];
}

/// The file, opened in the one way that keeps a path with an umlaut readable in any editor.
class ConfigFile final : public QSettings
{
public:
    ConfigFile() : QSettings(RuntimeConfig::configFilePath(), QSettings::IniFormat)
    {
        setIniCodec("UTF-8");
    }
};

QVariant read(Key key)
{
    const Setting &wanted = setting(key);
    return ConfigFile().value(QLatin1String(wanted.key), wanted.defaultValue);
}

QString readText(Key key)
{
    // An unquoted comma turns the value into a list, but one text was meant.
    return read(key).toStringList().join(QStringLiteral(", "));
}

QString readPath(Key key)
{
    return RuntimeConfig::resolveAppPath(readText(key));
}

} // namespace

void RuntimeConfig::ensureRuntimeConfig()
{
    const QDir applicationDir(QCoreApplication::applicationDirPath());
    for (const char *folder : {"bin", "sys", "out"})
        applicationDir.mkpath(QLatin1String(folder));

    ConfigFile file;
    for (int key = 0; key < KeyCount; ++key) {
        const QString name = QLatin1String(setting(key).key);
        if (!file.contains(name))
            file.setValue(name, setting(key).defaultValue);
    }
    file.sync();
}

QString RuntimeConfig::configFilePath()
{
    return QDir(QCoreApplication::applicationDirPath())
        .absoluteFilePath(QStringLiteral("sys/orvik.ini"));
}

QString RuntimeConfig::resolveAppPath(const QString &path)
{
    return QDir::isAbsolutePath(path)
               ? QDir::cleanPath(path)
               : QDir(QCoreApplication::applicationDirPath()).absoluteFilePath(path);
}

QString RuntimeConfig::apiBase()
{
    QString base = readText(ApiBase);
    while (base.endsWith(QLatin1Char('/')))
        base.chop(1);
    return base;
}

QString RuntimeConfig::curlPath()
{
    return readPath(Curl);
}

QString RuntimeConfig::ffmpegPath()
{
    return readPath(Ffmpeg);
}

QString RuntimeConfig::outputRoot()
{
    return readPath(Output);
}

QString RuntimeConfig::catalogPath()
{
    return readPath(Catalog);
}

QString RuntimeConfig::caBundlePath()
{
    return readPath(CaBundle);
}

int RuntimeConfig::connectTimeoutSeconds()
{
    return read(ConnectTimeout).toInt();
}

int RuntimeConfig::maxTransferSeconds()
{
    return read(MaxTransfer).toInt();
}

bool RuntimeConfig::allowInsecureFallback()
{
    return read(InsecureFallback).toBool();
}

int RuntimeConfig::preflightParallelRequests()
{
    return std::clamp(read(PreflightParallel).toInt(), 1, 6);
}

int RuntimeConfig::preflightProbeSeconds()
{
    return std::clamp(read(PreflightProbe).toInt(), 300, 86400);
}

int RuntimeConfig::aiaMaxTimeErrorSeconds()
{
    return std::max(0, read(AiaMaxTimeError).toInt());
}

int RuntimeConfig::suviMaxTimeErrorSeconds()
{
    return std::max(0, read(SuviMaxTimeError).toInt());
}

QVariant RuntimeConfig::preset(const QString &key)
{
    return ConfigFile().value(key);
}
