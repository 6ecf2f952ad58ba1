// bench_parts --base URL --out DIR --frames N --width W [--qt-writer]
//
// The same frames by the same steps in a plain loop without an engine: what cannot be avoided, each
// step timed on its own. Prints one line of JSON, all times in ms per frame. With --qt-writer the
// annotated copy goes through Qt's own PNG writer.

#include "base/runtimeconfig.h"
#include "bench/benchrun.h"
#include "bench/measures.h"
#include "client/curlcommand.h"
#include "client/helioviewerrequests.h"
#include "client/helioviewerresponses.h"
#include "imaging/blankblock.h"
#include "imaging/frameannotation.h"
#include "imaging/framedecoder.h"
#include "imaging/metricscale.h"
#include "imaging/pngwriter.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPixmap>
#include <QProcess>

#include <cstdio>

namespace {

QByteArray curl(const QStringList &arguments)
{
    QProcess process;
    process.start(RuntimeConfig::curlPath(), CurlCommand::commonArguments() + arguments);
    process.waitForFinished();
    return process.readAllStandardOutput();
}

class PlainLoop final
{
public:
    explicit PlainLoop(const BenchRun &run)
        : m_run(run), m_usesQtWriter(run.switches.contains(QLatin1String("--qt-writer")))
    {}

    /// One frame from question to annotated copy; false when a step failed.
    bool frame(int number)
    {
        const QString name = QStringLiteral("%1/frame_%2.png").arg(m_run.outputDirectory);
        const QString original = name.arg(QStringLiteral("original_%1").arg(number));
        const QDateTime requestedUtc =
            m_run.settings().startUtc.addSecs(static_cast<qint64>(number) * 60);
        const QJsonObject answer = lookUp(requestedUtc);
        const auto found = HelioviewerResponses::closestImage(answer);
        if (!found || !download(found->imageId, original))
            return false;
        QImage image = m_times.time("decode", [&] { return FrameDecoder::decode(original); });
        m_times.time("detect", [&] { return detectBlankRendererBlock(image, answer); });
        m_times.time("paint", [&] {
            drawFrameAnnotations(image, found->actualUtc, QStringLiteral("AIA 171"), true, true,
                                 true, MetricScale::kmPerPixel(answer, image.width()));
            return true;
        });
        const QString copy = name.arg(QStringLiteral("copy_%1").arg(number));
        return m_times.time("write", [&] { return write(image, copy); }) &&
               m_times.time("preview", [&] { return preview(copy); });
    }

    QJsonObject timesMs() const { return m_times.perFrame(m_run.frames); }

private:
    QJsonObject lookUp(const QDateTime &requestedUtc)
    {
        const QString url =
            HelioviewerRequests::closestImageUrl(RuntimeConfig::apiBase(), 10, requestedUtc);
        const QByteArray answer = m_times.time("lookup", [&] { return curl({url}); });
        return QJsonDocument::fromJson(answer).object();
    }

    bool download(qint64 imageId, const QString &file)
    {
        const QString url =
            HelioviewerRequests::renderedImageUrl(RuntimeConfig::apiBase(), imageId, m_run.widthPx);
        return m_times.time("download", [&] {
            curl({QStringLiteral("-o"), file, url});
            return QFile::exists(file);
        });
    }

    bool write(const QImage &image, const QString &file) const
    {
        return m_usesQtWriter ? image.save(file, "PNG") : PngWriter::save(image, file);
    }

    static bool preview(const QString &file)
    {
        const QPixmap frame = QPixmap::fromImage(QImage(file));
        return !frame.scaled(340, 340, Qt::KeepAspectRatio, Qt::SmoothTransformation).isNull();
    }

    const BenchRun &m_run;
    bool m_usesQtWriter;
    StepTimes m_times;
};

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const auto run = BenchRun::fromArguments(QGuiApplication::arguments());
    if (!run || !QDir().mkpath(run->outputDirectory))
        return 2;
    run->writeConfiguration();
    PlainLoop loop(*run);
    QElapsedTimer clock;
    clock.start();
    for (int number = 0; number < run->frames; ++number) {
        if (!loop.frame(number)) {
            std::fprintf(stderr, "frame %d failed\n", number);
            return 1;
        }
    }
    const QJsonObject result{
        {QStringLiteral("frames"), run->frames},
        {QStringLiteral("wall_ms"), static_cast<double>(clock.nsecsElapsed()) / 1e6 / run->frames},
        {QStringLiteral("steps_ms"), loop.timesMs()},
    };
    std::puts(QJsonDocument(result).toJson(QJsonDocument::Compact).constData());
    return 0;
}
