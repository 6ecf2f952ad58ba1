// bench_window --starts | --widgets | --start empty|form|window
//
// What the main window costs: its start, or its widgets (a catalog, a page of details, a line of
// the log, a preview). Prints one line of JSON per figure. With --start it only shows a window and
// ends with its first paint: an empty one with the same docks, the main window's form with nothing
// in it, or the main window with a catalog. The figures of the start come from running itself that
// way.

#include "app/applicationlook.h"
#include "base/jsonfile.h"
#include "base/runtimeconfig.h"
#include "bench/measures.h"
#include "ui/catalogtree.h"
#include "ui/logview.h"
#include "ui/mainwindow.h"
#include "ui/previewpane.h"
#include "ui/sourcedetails.h"
#include "ui_mainwindow.h"

#include <QApplication>
#include <QDockWidget>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QPainter>
#include <QProcess>
#include <QSettings>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QTextEdit>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <vector>

#include <sys/resource.h>

namespace {

void report(const char *what, int size, double value, const char *unit)
{
    std::printf("{\"what\": \"%s\", \"size\": %d, \"value\": %.3f, \"unit\": \"%s\"}\n", what, size,
                value, unit);
    std::fflush(stdout);
}

/// Processor time of this program, so that a busy machine does not show in the figures.
template<typename Work>
double milliseconds(Work work)
{
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    };
    const double before = now();
    work();
    return now() - before;
}

/// The middle one of several runs.
template<typename Measure>
double median(int runs, Measure measure)
{
    std::vector<double> values(static_cast<size_t>(runs));
    std::generate(values.begin(), values.end(), measure);
    std::nth_element(values.begin(), values.begin() + runs / 2, values.end());
    return values[static_cast<size_t>(runs) / 2];
}

// --- start

/// Ends the program when its window has been painted: at once, for taking the window down again is
/// no part of a start.
class EndAtFirstPaint final : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint) // the window's own; its children follow in one go
            QMetaObject::invokeMethod(
                qApp, [] { std::_Exit(0); }, Qt::QueuedConnection);
        return QObject::eventFilter(watched, event);
    }
};

/// A window with the docks of the real one and nothing in them or beside them.
std::unique_ptr<QMainWindow> emptyWindow()
{
    auto window = std::make_unique<QMainWindow>();
    window->resize(1415, 1031);
    window->setCentralWidget(new QWidget);
    const auto addDock = [&window](Qt::DockWidgetArea area, QWidget *content) {
        auto *dock = new QDockWidget(QStringLiteral("Dock"), window.get());
        dock->setWidget(content);
        window->addDockWidget(area, dock);
    };
    addDock(Qt::RightDockWidgetArea, new QTextBrowser);
    addDock(Qt::RightDockWidgetArea, new QTabWidget);
    addDock(Qt::BottomDockWidgetArea, new QTextEdit);
    return window;
}

/// The form of the main window, as it comes out of the designer.
std::unique_ptr<QMainWindow> emptyForm()
{
    auto window = std::make_unique<QMainWindow>();
    Ui::MainWindow().setupUi(window.get());
    return window;
}

int showUntilPainted(const QString &which)
{
    std::unique_ptr<QMainWindow> window;
    if (which == QLatin1String("window"))
        window = std::make_unique<MainWindow>();
    else
        window = which == QLatin1String("form") ? emptyForm() : emptyWindow();
    window->setWindowState(Qt::WindowNoState); // all of one size, whatever the screen
    EndAtFirstPaint filter;
    window->installEventFilter(&filter);
    window->show();
    return QApplication::exec();
}

double startCpuMs(const char *which)
{
    const double before = Measures::cpuMs(RUSAGE_CHILDREN);
    QProcess::execute(QCoreApplication::applicationFilePath(),
                      {QStringLiteral("--start"), QLatin1String(which)});
    return Measures::cpuMs(RUSAGE_CHILDREN) - before;
}

/// In turn, so that a busy moment of the machine falls on all of them.
void measureStarts(int leaves)
{
    constexpr int rounds = 31;
    const std::array<const char *, 3> kinds = {"empty", "form", "window"};
    std::array<std::vector<double>, kinds.size()> values;
    for (int round = 0; round < rounds; ++round) {
        for (size_t kind = 0; kind < kinds.size(); ++kind)
            values[kind].push_back(startCpuMs(kinds[kind]));
    }
    for (size_t kind = 0; kind < kinds.size(); ++kind) {
        std::sort(values[kind].begin(), values[kind].end());
        report(kinds[kind], kind == 2 ? leaves : 0, values[kind][rounds / 2], "ms CPU");
    }
}

// --- catalog

QJsonObject catalog(int leaves)
{
    QJsonObject top;
    for (int i = 0; i < leaves;) {
        QJsonObject instruments;
        for (int j = 0; j < 5; ++j) {
            QJsonObject measurements;
            for (int k = 0; k < 10 && i < leaves; ++k, ++i) {
                measurements[QStringLiteral("m%1").arg(i)] = QJsonObject{
                    {QStringLiteral("sourceId"), i},
                    {QStringLiteral("nickname"), QStringLiteral("Source %1").arg(leaves - i)},
                    {QStringLiteral("start"), QStringLiteral("2010-06-02 00:05:36")},
                    {QStringLiteral("end"), QStringLiteral("2024-05-01 12:00:00")},
                    {QStringLiteral("uiLabels"),
                     QJsonArray{QJsonObject{{QStringLiteral("label"), QStringLiteral("x")},
                                            {QStringLiteral("name"), QStringLiteral("y")}}}}};
            }
            instruments[QStringLiteral("i%1").arg(j)] = measurements;
        }
        top[QStringLiteral("observatory %1").arg(i)] = instruments;
    }
    return top;
}

void measureCatalog(int leaves)
{
    const QJsonObject object = catalog(leaves);
    QTreeWidget tree;
    tree.setUniformRowHeights(true);
    tree.resize(600, 500);
    tree.show();
    CatalogTree::Selection selection;
    for (int id = 0; id < leaves; id += 2)
        selection.tickedIds.insert(id);
    selection.currentId = leaves / 2;
    CatalogTree::fill(&tree, object, &selection);
    report(
        "catalog: fill, sort, expand, restore", leaves,
        median(9,
               [&] { return milliseconds([&] { CatalogTree::fill(&tree, object, &selection); }); }),
        "ms CPU");
    const QTreeWidgetItem *leaf = tree.currentItem();
    QTextEdit page;
    page.show();
    report("details page", leaves,
           median(9,
                  [&] {
                      return milliseconds([&] {
                          page.setHtml(SourceDetails::page(CatalogTree::source(leaf),
                                                           {QDateTime::currentDateTimeUtc(),
                                                            QDateTime::currentDateTimeUtc(), 60}));
                      });
                  }),
           "ms CPU");
}

// --- log

void appendLines(LogView &log, int count)
{
    for (int i = 0; i < count; ++i) {
        log.append(QStringLiteral("OK AIA 171  2024-05-01T12:00:07Z  delta +7 s  -> "
                                  "AIA_171_20240501_120000/frame_%1.png")
                       .arg(i, 6, 10, QLatin1Char('0')));
    }
}

void measureLog(bool visible)
{
    QTextEdit edit;
    QDockWidget dock;
    LogView log(&edit, &dock);
    edit.resize(1200, 180);
    if (visible)
        edit.show();
    int lines = 0;
    const double kbBefore = Measures::residentKb();
    for (const int mark : {1'000, 10'000, 100'000}) {
        appendLines(log, mark - 500 - lines);
        QApplication::processEvents();
        const double ms = median(500, [&log, visible] {
            return milliseconds([&log, visible] {
                appendLines(log, 1);
                if (visible)
                    QApplication::processEvents();
            });
        });
        lines = mark;
        report(visible ? "log line, visible" : "log line, hidden", mark, ms, "ms CPU");
    }
    report("log memory per line", lines, (Measures::residentKb() - kbBefore) / lines, "kB");
    if (!visible)
        report("log: first show", lines, milliseconds([&edit] {
                   edit.show();
                   QApplication::processEvents();
               }),
               "ms CPU");
    report("log: change of width", lines, milliseconds([&edit] {
               edit.resize(700, 180);
               QApplication::processEvents();
           }),
           "ms CPU");
}

// --- preview

void measurePreview(int widthPx)
{
    QImage image(widthPx, widthPx, QImage::Format_RGB32);
    QRadialGradient disk(QPointF(widthPx, widthPx) / 2, widthPx / 2.0);
    disk.setColorAt(0, Qt::yellow);
    disk.setColorAt(0.8, QColor(200, 80, 0));
    disk.setColorAt(1, Qt::black);
    QPainter(&image).fillRect(image.rect(), disk);
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("frame.png"));
    image.save(file);

    QLabel label;
    label.resize(350, 480);
    label.show();
    PreviewPane pane(&label);
    report("preview: decode alone", widthPx,
           median(5, [&] { return milliseconds([&] { Q_UNUSED(QImage(file).width()) }); }),
           "ms CPU");
    report("preview: new frame", widthPx,
           median(5, [&] { return milliseconds([&] { pane.showFrame(QImage(file)); }); }),
           "ms CPU");
    report("preview: new size", widthPx,
           median(5,
                  [&] {
                      return milliseconds([&] { label.resize(label.width() + 1, label.height()); });
                  }),
           "ms CPU");
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    applyApplicationLook(application);
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       QApplication::applicationDirPath() + QStringLiteral("/config"));
    const QStringList arguments = QApplication::arguments();
    const QString mode = arguments.value(1);
    if (mode == QLatin1String("--start"))
        return showUntilPainted(arguments.value(2));
    if (mode == QLatin1String("--starts")) {
        constexpr int leaves = 150;
        RuntimeConfig::ensureRuntimeConfig();
        JsonFile::save(RuntimeConfig::catalogPath(), catalog(leaves));
        measureStarts(leaves);
        return 0;
    }
    for (const int leaves : {150, 1'250, 5'000, 20'000})
        measureCatalog(leaves);
    measureLog(true);
    measureLog(false);
    for (const int widthPx : {1024, 2048, 4096})
        measurePreview(widthPx);
    return 0;
}
