#include "tools/pictures/windowpictures.h"

#include "base/runtimeconfig.h"
#include "simulator/service/fault.h"
#include "simulator/service/server.h"
#include "tools/pictures/album.h"
#include "ui/catalogtree.h"
#include "ui/mainwindow.h"
#include "ui/outputsearch.h"

#include <QAction>
#include <QCheckBox>
#include <QDateTimeEdit>
#include <QDockWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTextBrowser>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

namespace {

constexpr QSize windowSize(1280, 900);

/// A main window that is operated through the names of its parts.
class Operator final
{
public:
    Operator()
    {
        m_window.resize(windowSize);
        m_window.show();
    }

    MainWindow &window() { return m_window; }

    template<typename Widget>
    Widget *find(const char *name) const
    {
        auto *widget = m_window.findChild<Widget *>(QLatin1String(name));
        if (!widget)
            qFatal("the window has no %s", name);
        return widget;
    }

    bool waitForCatalog() const
    {
        return waitUntil([this] { return find<QTreeWidget>("sourcesTree")->topLevelItemCount(); });
    }

    void setInterval(const QString &startUtc, const QString &endUtc, int cadenceSeconds) const
    {
        find<QDateTimeEdit>("startEdit")->setDateTime(QDateTime::fromString(startUtc, Qt::ISODate));
        find<QDateTimeEdit>("endEdit")->setDateTime(QDateTime::fromString(endUtc, Qt::ISODate));
        find<QSpinBox>("cadenceSpin")->setValue(cadenceSeconds);
    }

    QTreeWidgetItem *leaf(const QString &nickname) const
    {
        for (QTreeWidgetItemIterator it(find<QTreeWidget>("sourcesTree")); *it; ++it) {
            QTreeWidgetItem *item = *it;
            if (CatalogTree::isLeaf(item) && CatalogTree::source(item).source.nickname == nickname)
                return item;
        }
        qFatal("the catalog has no %s", qPrintable(nickname));
    }

    /// Ticks these datasources and no other; the last one becomes current.
    void tick(const QStringList &nicknames) const
    {
        find<QPushButton>("clearButton")->click();
        for (const QString &nickname : nicknames)
            leaf(nickname)->setCheckState(0, Qt::Checked);
        find<QTreeWidget>("sourcesTree")->setCurrentItem(leaf(nicknames.last()));
    }

    bool isRunning() const { return find<QAction>("actionStopAcquisition")->isEnabled(); }

    bool start() const
    {
        find<QAction>("actionStartAcquisition")->trigger();
        return isRunning();
    }

    bool waitForEnd() const
    {
        return waitUntil([this] { return !isRunning(); }, 600000);
    }

private:
    MainWindow m_window;
};

void takeSettings(Album &album, const Operator &op)
{
    auto *tabs = op.find<QTabWidget>("settimgsTab");
    album.addWidget(QStringLiteral("interval"), tabs);
    tabs->setCurrentIndex(1);
    album.addWidget(QStringLiteral("video"), tabs);
    tabs->setCurrentIndex(0);
}

/// The whole page of the current datasource, in a window high enough for it.
void takeDetails(Album &album, Operator &op)
{
    auto *page = op.find<QTextBrowser>("catalogInfo");
    const int missingPx =
        static_cast<int>(page->document()->size().height()) - page->viewport()->height();
    if (missingPx > 0)
        op.window().resize(op.window().width(), op.window().height() + missingPx);
    album.addWidget(QStringLiteral("details"), op.find<QWidget>("infoBox"));
}

bool isAtLeast(const Operator &op, double share)
{
    const auto *progress = op.find<QProgressBar>("progress");
    return progress->maximum() > 20 && progress->value() >= share * progress->maximum();
}

} // namespace

QString WindowPictures::takeFirstFilm(Album &album)
{
    Operator op;
    if (!op.waitForCatalog())
        return {};
    op.setInterval(QStringLiteral("2024-05-10T06:00:00Z"), QStringLiteral("2024-05-10T08:00:00Z"),
                   120);
    op.tick({QStringLiteral("AIA 171"), QStringLiteral("AIA 304"), QStringLiteral("LASCO C2"),
             QStringLiteral("GOES-R SUVI 195")});
    op.find<QSpinBox>("timeErrorSpin")->setValue(300); // LASCO wanders by minutes
    op.find<QCheckBox>("scaleOverlayCheck")->setChecked(true);
    album.addWidget(QStringLiteral("ready"), &op.window());
    op.find<QTreeWidget>("sourcesTree")
        ->scrollToItem(op.leaf(QStringLiteral("AIA 304")), QTreeWidget::PositionAtCenter);
    album.addWidget(QStringLiteral("catalog"), op.find<QWidget>("sourceBox"));
    takeSettings(album, op);

    if (!op.start() || !waitUntil([&op] { return isAtLeast(op, 0.6); }))
        return {};
    album.addWidget(QStringLiteral("running"), &op.window());
    album.addWidget(QStringLiteral("preview"), op.find<QWidget>("previewBox"));
    album.addWidget(QStringLiteral("status"), op.find<QWidget>("statusBox"));
    if (!op.waitForEnd())
        return {};
    album.addWidget(QStringLiteral("finished"), &op.window());
    takeDetails(album, op);
    return OutputSearch::newestSession(RuntimeConfig::outputRoot());
}

QString WindowPictures::takeLog(Album &album, Simulator::Server &server)
{
    Operator op;
    if (!op.waitForCatalog())
        return {};
    op.setInterval(QStringLiteral("2024-05-10T06:00:00Z"), QStringLiteral("2024-05-10T06:04:00Z"),
                   120);
    op.tick({QStringLiteral("EIT 171"), QStringLiteral("AIA 171"), QStringLiteral("AIA 304")});
    op.find<QSpinBox>("widthSpin")->setValue(256);

    // One web page in place of data; the archive itself has no picture of EIT near this time.
    Simulator::Fault page{Simulator::Operation::GetClosestImage, Simulator::FaultKind::HtmlBody};
    page.first = server.requestCount(Simulator::Operation::GetClosestImage) + 3;
    page.count = 1;
    server.addFault(page);
    const bool ended = op.start() && op.waitForEnd();
    server.clearFaults();

    auto *dock = op.find<QDockWidget>("logWidget");
    op.window().resizeDocks({dock}, {460}, Qt::Vertical);
    auto *log = op.find<QTextEdit>("log");
    waitUntil([log] { return log->height() > 350; }, 2000);
    log->moveCursor(QTextCursor::Start);
    album.addWidget(QStringLiteral("log"), dock);
    return ended ? OutputSearch::newestSession(RuntimeConfig::outputRoot()) : QString();
}
