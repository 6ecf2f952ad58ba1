// sys/orvik.ini as a hand may have edited it.

#include "base/runtimeconfig.h"
#include "fuzz/scratch.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QVariant>

namespace {

/// Qt reads a file again only when its time or size has changed, and this loop is faster than
/// clocks.
void writeConfiguration(const QByteArray &content)
{
    static const bool hasFolder = QDir().mkpath(QFileInfo(RuntimeConfig::configFilePath()).path());
    Scratch::require(hasFolder, "a folder for the file");
    static QDateTime time({2000, 1, 1}, {0, 0}, Qt::UTC);
    time = time.addSecs(1);
    QFile file(RuntimeConfig::configFilePath());
    Scratch::require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size() &&
                         file.flush() && file.setFileTime(time, QFileDevice::FileModificationTime),
                     "room for a file");
}

void readAll()
{
    const QString base = RuntimeConfig::apiBase();
    Scratch::require(!base.endsWith(QLatin1Char('/')), "the base ends without a slash");
    for (const QString &path :
         {RuntimeConfig::curlPath(), RuntimeConfig::ffmpegPath(), RuntimeConfig::outputRoot(),
          RuntimeConfig::catalogPath(), RuntimeConfig::caBundlePath()})
        Scratch::require(QDir::isAbsolutePath(path), "every path is absolute");
    const int parallel = RuntimeConfig::preflightParallelRequests();
    const int probe = RuntimeConfig::preflightProbeSeconds();
    Scratch::require(parallel >= 1 && parallel <= 6, "1 to 6 at once");
    Scratch::require(probe >= 300 && probe <= 86400, "5 minutes to a day");
    Scratch::require(RuntimeConfig::aiaMaxTimeErrorSeconds() >= 0 &&
                         RuntimeConfig::suviMaxTimeErrorSeconds() >= 0,
                     "no tolerance is below 0");
    RuntimeConfig::connectTimeoutSeconds();
    RuntimeConfig::maxTransferSeconds();
    RuntimeConfig::allowInsecureFallback();
    RuntimeConfig::preset(QStringLiteral("acquisition/cadenceSeconds")).toInt();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const QByteArray content = Scratch::bytes(data, size);
    // No hand writes what Qt has serialised, and Qt believes the lengths in there: a list of a
    // thousand million texts ends any program that reads its settings with it.
    if (content.contains("Variant(") || content.contains("DateTime("))
        return 0;
    writeConfiguration(content);
    readAll();
    if (size % 16 > 0)
        return 0; // to complete the file waits for the disk and takes most of the time
    const QString base = RuntimeConfig::apiBase();
    RuntimeConfig::ensureRuntimeConfig();
    readAll();
    Scratch::require(RuntimeConfig::apiBase() == base, "completing the file changes no value");
    return 0;
}
