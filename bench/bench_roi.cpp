// bench_roi --session DIR --rect X,Y,W,H --rotation R [--qt-writer]
//
// One region film of a stored session's first datasource, in pixels of its first frame: by the
// generator as the window uses it, then its parts each on its own, which cannot be avoided. Prints
// one line of JSON, all times in ms per frame. With --qt-writer the parts write their pictures with
// alpha through Qt's own PNG writer. The film stays in the session, its name is "bench".

#include "base/runtimeconfig.h"
#include "bench/measures.h"
#include "imaging/frameannotation.h"
#include "imaging/metricscale.h"
#include "imaging/pngwriter.h"
#include "output/sessionfiles.h"
#include "roi/roiencoder.h"
#include "roi/roiframe.h"
#include "roi/roigeometry.h"
#include "roi/roivideogenerator.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <cstdio>
#include <optional>

#include <sys/resource.h>

namespace {

struct Arguments
{
    StoredSession session;
    RoiVideoPlan plan;
    bool usesQtWriter = false;

    static std::optional<Arguments> parse(const QStringList &words);
    const RoiSource &source() const { return plan.sources.first().source; }
    const Roi &roi() const { return plan.rois.first().roi; }
};

QRectF rectangle(const QString &text)
{
    const QStringList sides = text.split(QLatin1Char(','));
    return {sides.value(0).toDouble(), sides.value(1).toDouble(), sides.value(2).toDouble(),
            sides.value(3).toDouble()};
}

std::optional<Arguments> Arguments::parse(const QStringList &words)
{
    const auto after = [&words](const char *option) {
        const int at = words.indexOf(QLatin1String(option));
        return at < 0 ? QString() : words.value(at + 1);
    };
    Arguments arguments;
    const QRectF pixels = rectangle(after("--rect"));
    const auto session = RoiSession::load(after("--session"));
    const QImage first(session ? session->sources.first().frames.value(0).file : QString());
    if (pixels.isEmpty() || first.isNull()) {
        std::fputs("usage: --session DIR --rect X,Y,W,H --rotation R [--qt-writer]\n", stderr);
        return std::nullopt;
    }
    arguments.session = *session;
    arguments.usesQtWriter = words.contains(QLatin1String("--qt-writer"));
    RoiVideoPlan &plan = arguments.plan;
    plan.sessionDirectory = session->directory;
    plan.sources = {{session->sources.first(), {}}};
    plan.rois = {{1,
                  {QStringLiteral("bench"), RoiGeometry::normalizedRect(pixels, first.size()), true,
                   after("--rotation").toInt()}}};
    return arguments;
}

/// The steps of a film in a plain loop.
class PlainLoop final
{
public:
    explicit PlainLoop(const Arguments &arguments) : m_arguments(arguments) {}

    const StepTimes &times() const { return m_times; }

    bool run()
    {
        int index = 0;
        for (const RoiSourceFrame &frame : m_arguments.source().frames) {
            if (!picture(frame, index++))
                return false;
        }
        return m_times.time("encode", [this, index] {
            const RoiVideoPlan &plan = m_arguments.plan;
            return RoiEncoder().run(
                {RuntimeConfig::ffmpegPath(), m_folder.path(), SessionFiles::framePattern(),
                 m_folder.filePath(QStringLiteral("film.mp4")), plan.fps, plan.crf, index});
        });
    }

private:
    bool picture(const RoiSourceFrame &frame, int index)
    {
        const Roi &roi = m_arguments.roi();
        const QImage decoded = m_times.time("decode", [&] { return QImage(frame.file); });
        QImage cut = m_times.time("cut", [&] {
            return RoiFrame::turned(
                RoiFrame::crop(decoded, RoiGeometry::pixelRect(roi.rect, decoded.size())),
                roi.rotation);
        });
        m_times.time("annotate", [&] {
            drawFrameAnnotations(cut, frame.actualUtc, m_arguments.source().nickname, true, true,
                                 true, MetricScale::kmPerPixel(frame.metadata, decoded.width()));
            return true;
        });
        const QString path =
            m_folder.filePath(QStringLiteral("frame_%1.png").arg(index, 6, 10, QLatin1Char('0')));
        return m_times.time("write", [&] {
            return m_arguments.usesQtWriter ? cut.convertToFormat(QImage::Format_ARGB32).save(path)
                                            : PngWriter::save(cut, path);
        });
    }

    const Arguments &m_arguments;
    QTemporaryDir m_folder;
    StepTimes m_times;
};

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QStringList words; // taken before Qt looks for its own options, of which --session is one
    for (int i = 1; i < argc; ++i)
        words.append(QString::fromLocal8Bit(argv[i]));
    QGuiApplication application(argc, argv);
    const auto arguments = Arguments::parse(words);
    if (!arguments)
        return 2;

    const int frames = arguments->plan.totalFrames();
    RoiVideoGenerator generator;
    const double selfBefore = Measures::cpuMs(RUSAGE_SELF);
    const double encoderBefore = Measures::cpuMs(RUSAGE_CHILDREN);
    QElapsedTimer clock;
    clock.start();
    const bool completed = generator.run(arguments->plan) == RoiVideoGenerator::Outcome::Completed;
    const double wallMs = static_cast<double>(clock.nsecsElapsed()) / 1e6;
    const double selfMs = Measures::cpuMs(RUSAGE_SELF) - selfBefore;
    const double encoderMs = Measures::cpuMs(RUSAGE_CHILDREN) - encoderBefore;

    PlainLoop parts(*arguments);
    if (!completed || !parts.run()) {
        std::fprintf(stderr, "%s\n", qPrintable(generator.errorText()));
        return 1;
    }
    const QJsonObject result{
        {QStringLiteral("frames"), frames},
        {QStringLiteral("wall_ms"), wallMs / frames},
        {QStringLiteral("cpu_ms"), selfMs / frames},
        {QStringLiteral("encoder_cpu_ms"), encoderMs / frames},
        {QStringLiteral("stages_ms"), parts.times().perFrame(frames)},
        {QStringLiteral("stages_sum_ms"), parts.times().sumMs() / frames},
        {QStringLiteral("wall_to_sum"), wallMs / parts.times().sumMs()},
    };
    std::puts(QJsonDocument(result).toJson(QJsonDocument::Compact).constData());
    return 0;
}
