#include "bench/benchrun.h"

#include "base/runtimeconfig.h"

#include <QDir>
#include <QSettings>

#include <cstdio>

std::optional<BenchRun> BenchRun::fromArguments(const QStringList &arguments)
{
    BenchRun run;
    for (int i = 1; i < arguments.size(); ++i) {
        const QString &name = arguments.at(i);
        if (name == QLatin1String("--base"))
            run.baseUrl = arguments.value(++i);
        else if (name == QLatin1String("--out"))
            run.outputDirectory = QDir(arguments.value(++i)).absolutePath();
        else if (name == QLatin1String("--frames"))
            run.frames = arguments.value(++i).toInt();
        else if (name == QLatin1String("--width"))
            run.widthPx = arguments.value(++i).toInt();
        else
            run.switches << name;
    }
    if (!run.baseUrl.isEmpty() && !run.outputDirectory.isEmpty() && run.frames > 0 &&
        run.widthPx > 0)
        return run;
    std::fputs("usage: --base URL --out DIR --frames N --width W\n", stderr);
    return std::nullopt;
}

AcquisitionSettings BenchRun::settings() const
{
    AcquisitionSettings settings;
    settings.startUtc = QDateTime({2024, 5, 1}, {0, 0}, Qt::UTC);
    settings.cadenceSeconds = 60;
    settings.endUtc =
        settings.startUtc.addSecs(static_cast<qint64>(frames - 1) * settings.cadenceSeconds);
    settings.imageWidth = widthPx;
    settings.scaleOverlay = true;
    settings.createVideos = false;
    settings.sources = {{10, QStringLiteral("AIA 171"), QStringLiteral("SDO/AIA/171")}};
    return settings;
}

void BenchRun::writeConfiguration() const
{
    RuntimeConfig::ensureRuntimeConfig();
    QSettings config(RuntimeConfig::configFilePath(), QSettings::IniFormat);
    config.setIniCodec("UTF-8");
    config.setValue(QStringLiteral("network/apiBase"), baseUrl);
    config.setValue(QStringLiteral("paths/output"), outputDirectory);
}
