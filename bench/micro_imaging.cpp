// clazy:excludeall=non-pod-global-static (that is how Google Benchmark registers a function)
// What one frame costs: the blank-block search, the annotations, and the file, beside Qt's writer.

#include "imaging/blankblock.h"
#include "imaging/frameannotation.h"
#include "imaging/pngwriter.h"

#include <benchmark/benchmark.h>

#include <QDateTime>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <cmath>

namespace {

/// A grainy disk in 256 colours, as the service delivers it.
QImage sun(int widthPx)
{
    QImage image(widthPx, widthPx, QImage::Format_Indexed8);
    for (int i = 0; i < 256; ++i)
        image.setColor(i, qRgb(i, i * i / 300, i * i / 500));
    QRandomGenerator random(20240501);
    const double radius = 0.4 * widthPx;
    for (int y = 0; y < widthPx; ++y) {
        uchar *line = image.scanLine(y);
        for (int x = 0; x < widthPx; ++x) {
            const double r = std::hypot(x - widthPx / 2, y - widthPx / 2) / radius;
            const double light = r < 1.0 ? 90.0 + 110.0 * std::sqrt(1.0 - r * r) : 60.0 / (r * r);
            line[x] = static_cast<uchar>(light + static_cast<double>(random.bounded(10)));
        }
    }
    return image;
}

QJsonObject metadata()
{
    return {{QStringLiteral("width"), 4096},
            {QStringLiteral("height"), 4096},
            {QStringLiteral("rsun"), 1638.4}};
}

QDateTime noon()
{
    return {QDate(2024, 5, 1), QTime(12, 0, 7), Qt::UTC};
}

void blankBlockSearch(benchmark::State &state)
{
    const QImage image =
        sun(static_cast<int>(state.range(0))).convertToFormat(QImage::Format_RGB32);
    while (state.KeepRunning())
        benchmark::DoNotOptimize(detectBlankRendererBlock(image, metadata()));
}

void annotations(benchmark::State &state)
{
    QImage image = sun(static_cast<int>(state.range(0))).convertToFormat(QImage::Format_ARGB32);
    while (state.KeepRunning())
        drawFrameAnnotations(image, noon(), QStringLiteral("AIA 171"), true, true, true, 1739.25);
}

/// Saves with @p save to a file and tells its size.
template<typename Save>
void writer(benchmark::State &state, Save save)
{
    const QImage image =
        sun(static_cast<int>(state.range(0))).convertToFormat(QImage::Format_ARGB32);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("frame.png"));
    while (state.KeepRunning()) {
        if (!save(image, path))
            state.SkipWithError("cannot write");
    }
    state.counters["bytes"] = static_cast<double>(QFileInfo(path).size());
}

void ourWriter(benchmark::State &state)
{
    writer(state,
           [](const QImage &image, const QString &path) { return PngWriter::save(image, path); });
}

void qtWriter(benchmark::State &state)
{
    writer(state, [](const QImage &image, const QString &path) { return image.save(path, "PNG"); });
}

void annotatedCopy(benchmark::State &state)
{
    const QImage image = sun(static_cast<int>(state.range(0)));
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("frame.png"));
    while (state.KeepRunning()) {
        if (!saveTimestampedFrame(image, path, noon(), QStringLiteral("AIA 171"), metadata(), true,
                                  true))
            state.SkipWithError("cannot write");
    }
}

} // namespace

BENCHMARK(blankBlockSearch)->Arg(1024)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(annotations)->Arg(1024)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(ourWriter)->Arg(1024)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(qtWriter)->Arg(1024)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(annotatedCopy)->Arg(1024)->Arg(4096)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
