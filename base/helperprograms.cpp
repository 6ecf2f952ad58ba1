#include "base/helperprograms.h"

#include "base/runtimeconfig.h"

#include <QFile>
#include <QStandardPaths>

#ifdef Q_OS_LINUX
namespace {

void linkIfMissing(const QString &name, const QString &configuredPath)
{
    const QString place = RuntimeConfig::resolveAppPath(QStringLiteral("bin/") + name);
    if (configuredPath != place || QFile::exists(place))
        return;
    const QString program = QStandardPaths::findExecutable(name);
    if (!program.isEmpty())
        QFile::link(program, place);
}

} // namespace

void HelperPrograms::linkMissing()
{
    linkIfMissing(QStringLiteral("curl"), RuntimeConfig::curlPath());
    linkIfMissing(QStringLiteral("ffmpeg"), RuntimeConfig::ffmpegPath());
}
#else
void HelperPrograms::linkMissing() {}
#endif
