// bench_accept --base URL --out DIR --frames N --width W [--no-window]
//
// One session with the real engine, connected as the window connects it, against any service.
// Prints one line of JSON. With --no-window neither log nor preview is there, so that what is left
// of the memory's growth is the engine's.

#include "acquisition/acquisitioncontroller.h"
#include "bench/benchrun.h"
#include "bench/measures.h"
#include "bench/stagewatch.h"
#include "ui/logview.h"
#include "ui/previewpane.h"

#include <QApplication>
#include <QDockWidget>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QMainWindow>
#include <QTextEdit>
#include <QTimer>

#include <cstdio>

#include <sys/resource.h>

namespace {

/// The two places of the main window that every frame touches.
class Window final
{
public:
    Window() : m_log(&m_logText, &m_dock), m_preview(&m_label)
    {
        m_dock.setWidget(&m_logText);
        m_window.addDockWidget(Qt::BottomDockWidgetArea, &m_dock);
        m_window.setCentralWidget(&m_label);
        m_window.resize(1200, 800);
        m_window.show();
    }

    void connectTo(AcquisitionController &controller, StageWatch &watch)
    {
        QObject::connect(&controller, &AcquisitionController::logMessage, &m_log,
                         [this, &watch](const QString &text) {
                             watch.enterWindow();
                             m_log.append(text);
                             watch.leaveWindow();
                         });
        QObject::connect(
            &controller, &AcquisitionController::previewReady, &m_preview,
            [this, &controller, &watch](const QString &, const QString &imageFile) {
                QTimer::singleShot(0, &m_preview, [this, &controller, &watch, imageFile] {
                    watch.enterWindow();
                    m_preview.showFrame(controller.pictureInHand(imageFile));
                    watch.leaveWindow();
                });
            },
            Qt::QueuedConnection);
    }

private:
    QMainWindow m_window;
    QDockWidget m_dock;
    QTextEdit m_logText;
    QLabel m_label;
    LogView m_log;
    PreviewPane m_preview;
};

/// How resident memory grows once a fifth of the session is done and all caches are filled.
class MemoryWatch final
{
public:
    explicit MemoryWatch(int frames) : m_settled(std::max(1, frames / 5)) {}

    int frames() const { return m_frames; }

    void onFrame()
    {
        if (++m_frames == m_settled)
            m_settledKb = Measures::residentKb();
    }

    double growthKbPer1000() const
    {
        const int frames = m_frames - m_settled;
        return frames > 0 ? (Measures::residentKb() - m_settledKb) * 1000 / frames : 0.0;
    }

private:
    int m_settled;
    int m_frames = 0;
    double m_settledKb = 0.0;
};

int measure(const BenchRun &run)
{
    AcquisitionController controller;
    StageWatch watch(controller);
    std::optional<Window> window;
    if (!run.switches.contains(QLatin1String("--no-window")))
        window.emplace().connectTo(controller, watch);
    MemoryWatch memory(run.frames);
    QEventLoop loop;
    QObject::connect(&controller, &AcquisitionController::previewReady, &loop,
                     [&memory] { memory.onFrame(); });
    QObject::connect(&controller, &AcquisitionController::finished, &loop, &QEventLoop::quit);

    QString errorText;
    const double cpuBefore = Measures::cpuMs(RUSAGE_SELF);
    QElapsedTimer clock;
    clock.start();
    if (!controller.start(run.settings(), &errorText)) {
        std::fprintf(stderr, "%s\n", qPrintable(errorText));
        return 1;
    }
    loop.exec();
    const double wallMs = static_cast<double>(clock.nsecsElapsed()) / 1e6;
    const QJsonObject result{
        {QStringLiteral("frames"), memory.frames()},
        {QStringLiteral("width"), run.widthPx},
        {QStringLiteral("wall_ms"), wallMs / run.frames},
        {QStringLiteral("self_cpu_ms"), (Measures::cpuMs(RUSAGE_SELF) - cpuBefore) / run.frames},
        {QStringLiteral("largest_stall_ms"), watch.largestStallMs()},
        {QStringLiteral("stages_ms"), watch.stagesMs(run.frames)},
        {QStringLiteral("growth_kb_per_1000_frames"), memory.growthKbPer1000()},
    };
    std::puts(QJsonDocument(result).toJson(QJsonDocument::Compact).constData());
    return memory.frames() == run.frames ? 0 : 1; // a frame that is not accepted costs less
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const auto run = BenchRun::fromArguments(QApplication::arguments());
    if (!run)
        return 2;
    run->writeConfiguration();
    return measure(*run);
}
