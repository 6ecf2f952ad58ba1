// clazy:excludeall=non-pod-global-static (that is how Google Benchmark registers a function)
#include "output/manifestreader.h"
#include "output/manifestrow.h"
#include "output/manifestwriter.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <malloc.h>

namespace {

enum class Geometry { Steady, PerFrame };

/// Two datasources in turn, one image a minute, as a long session enters them.
ManifestRow sampleRow(int index, Geometry geometry)
{
    const double drift = geometry == Geometry::PerFrame ? index * 1e-4 : 0.0;
    ManifestRow row;
    row.request.sourceId = 10 + index % 2;
    row.request.nickname = QStringLiteral("AIA 171");
    row.request.requestIndex = index;
    row.request.requestedUtc =
        QDateTime::fromSecsSinceEpoch(1714521600 + static_cast<qint64>(index) * 60, Qt::UTC);
    row.actualUtc = row.request.requestedUtc.addSecs(9);
    row.imageId = 150753140000 + index;
    row.deltaSeconds = 9;
    row.toleranceSeconds = 30;
    row.file =
        QStringLiteral("AIA_171_20240501_000000/frame_%1.png").arg(index, 6, 10, QLatin1Char('0'));
    row.videoFrame = QStringLiteral("AIA_171_20240501_000000/video_frames/frame_%1.png")
                         .arg(index, 6, 10, QLatin1Char('0'));
    row.metadata = {{QStringLiteral("scale"), 0.600165},
                    {QStringLiteral("width"), 4096},
                    {QStringLiteral("height"), 4096},
                    {QStringLiteral("rsun"), 1586.25 + drift},
                    {QStringLiteral("refPixelX"), 2048.5 + drift},
                    {QStringLiteral("refPixelY"), 2047.5 - drift}};
    return row;
}

void writeRows(ManifestWriter &writer, int count, Geometry geometry)
{
    for (int index = 0; index < count; ++index)
        writer.append(sampleRow(index, geometry));
}

/// One row at the end of a manifest that holds range(0) rows already.
void appendRow(benchmark::State &state)
{
    const QTemporaryDir folder;
    ManifestWriter writer;
    if (!writer.create(folder.path())) {
        state.SkipWithError("cannot create manifest.csv");
        return;
    }
    writeRows(writer, static_cast<int>(state.range(0)), Geometry::Steady);
    const ManifestRow row = sampleRow(static_cast<int>(state.range(0)), Geometry::Steady);
    while (state.KeepRunning())
        writer.append(row);
}
BENCHMARK(appendRow)->Arg(100)->Arg(100000)->Iterations(20000);

/// A whole manifest of range(0) rows; the counters are per row.
void readBack(benchmark::State &state, Geometry geometry)
{
    const QTemporaryDir folder;
    const int rows = static_cast<int>(state.range(0));
    {
        ManifestWriter writer;
        if (!writer.create(folder.path())) {
            state.SkipWithError("cannot create manifest.csv");
            return;
        }
        writeRows(writer, rows, geometry);
    }
    const QString path = folder.filePath(QStringLiteral("manifest.csv"));
    while (state.KeepRunning()) {
        const auto before = mallinfo2();
        const auto frames = ManifestReader::read(path);
        const auto after = mallinfo2();
        state.counters["bytes"] = static_cast<double>(after.uordblks + after.hblkhd) -
                                  static_cast<double>(before.uordblks + before.hblkhd);
        state.counters["bytes"] /= rows;
        if (!frames || frames->bySource.value(10).size() != rows / 2)
            state.SkipWithError("rows are missing");
    }
    state.counters["time"] = benchmark::Counter(
        rows, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK_CAPTURE(readBack, steadyGeometry, Geometry::Steady)
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readBack, geometryPerFrame, Geometry::PerFrame)
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMillisecond);

} // namespace
