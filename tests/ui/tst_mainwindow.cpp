#include "acquisition/acquisitioncontroller.h"
#include "base/terminationsignals.h"
#include "simulator/archive/archive.h"
#include "simulator/service/server.h"
#include "tests/support/literals.h"
#include "tests/support/testfolder.h"
#include "tests/ui/windowfixture.h"
#include "ui/licensedialog.h"

#include <QAccessible>
#include <QAction>
#include <QCheckBox>
#include <QDateTimeEdit>
#include <QDesktopServices>
#include <QDockWidget>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QSplitter>
#include <QStatusBar>
#include <QTextEdit>
#include <QToolButton>
#include <QTreeWidget>
#include <QtTest>

#include <csignal>
#include <utility>

using Simulator::Operation;
using WindowFixture::BoxCloser;
using WindowFixture::logText;
using WindowFixture::part;
using WindowFixture::userSettings;

namespace {

constexpr char catalog[] = R"({"SDO": {"AIA": {
    "171": {"sourceId": 10, "nickname": "AIA 171", "start": "2010", "end": "2024"},
    "<b>": {"sourceId": 13, "nickname": "<b>AIA</b>"}}}})";

const QString nowhere = "http://127.0.0.1:9/<i>"_s; // markup in an error's text

constexpr int stopping = 0;
constexpr int closing = -1;

/// What of all that a run locks or frees can be used now.
QStringList enabledParts(const MainWindow &window)
{
    const QString parts =
        "sourcesTree refreshButton aiaButton clearButton startEdit endEdit cadenceSpin "
        "timeErrorSpin sourceTimingProfilesCheck widthSpin fpsSpin crfSpin keepFramesCheck "
        "sourceOverlayCheck scaleOverlayCheck createVideosCheck actionCreateRoiVideo "
        "actionStartAcquisition actionStopAcquisition"_s;
    QStringList names = parts.split(QLatin1Char(' '));
    const auto isDisabled = [&window](const QString &name) {
        return !window.findChild<QObject *>(name)->property("enabled").toBool();
    };
    names.erase(std::remove_if(names.begin(), names.end(), isDisabled), names.end());
    return names;
}

} // namespace

class TestMainWindow final : public QObject
{
    Q_OBJECT

public slots:
    void open(const QUrl &url) { m_opened.append(url.toLocalFile()); }

private slots:
    void initTestCase() { QVERIFY(m_server.start()); }

    void init()
    {
        WindowFixture::reset();
        WindowFixture::writeCatalog(catalog);
        m_opened.clear();
    }

    /// A screen reader says it; Qt's own parts of parts have their whole's.
    void everyInteractivePartHasAName()
    {
        const MainWindow window;
        QString nameless;
        const auto parts = window.findChildren<QWidget *>();
        for (QWidget *part : parts) {
            QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(part);
            if (accessible->state().focusable && accessible->text(QAccessible::Name).isEmpty() &&
                !part->objectName().startsWith("qt_"_s))
                nameless += part->objectName() + QLatin1Char(' ');
        }
        QCOMPARE(nameless, QString());
    }

    void actionsHaveKeysAndTheirTurn()
    {
        const MainWindow window;
        QStringList keys;
        const auto actions = window.findChildren<QAction *>(QRegularExpression("^action"_s));
        for (const QAction *action : actions)
            keys += action->objectName().mid(6) + QLatin1Char(' ') + action->shortcut().toString();
        QCOMPARE(keys.join(QLatin1Char('|')),
                 "OpenOutputFolder Ctrl+O|PlayLatestVideo Ctrl+L|PlaySelectedVideo Ctrl+Shift+L|"
                 "CreateRoiVideo Ctrl+I|StartAcquisition Ctrl+Return|StopAcquisition Ctrl+.|Exit |"
                 "RefreshCatalog F5|HelpOrvik F1|License "_s);
        QStringList afterTheLog;
        const QWidget *next = part<QTextEdit>(window, "log");
        while (afterTheLog.size() < 3) {
            next = next->nextInFocusChain();
            if (const auto *button = qobject_cast<const QToolButton *>(next))
                afterTheLog += button->text() + QString::number(button->focusPolicy());
        }
        QCOMPARE(afterTheLog, QStringList({"Start acquisition1"_s, "Stop1"_s, "Open ./out1"_s}));
        QCOMPARE(window.focusWidget(), part<QWidget>(window, "sourcesTree"));
    }

    void refusedStartSavesSettingsAndKeepsTheLog()
    {
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        const QString cadence = "acquisition/cadenceSeconds"_s;
        part<QSpinBox>(window, "cadenceSpin")->setValue(7);
        auto *dock = part<QDockWidget>(window, "dockWidget");
        dock->setStyleSheet("font-size: 16pt"_s);
        QTRY_VERIFY(dock->height() > dock->minimumSizeHint().height()); // not over its neighbours
        const int higher = dock->height() + 40;
        window.resizeDocks({dock}, {higher}, Qt::Vertical);
        QTRY_COMPARE(dock->height(), higher);
        for (int turn = 0; turn < 3; ++turn)
            QCoreApplication::processEvents();
        QCOMPARE(dock->height(), higher); // as the user wants it
        const BoxCloser boxes;
        QTest::keyClick(&window, Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(userSettings().value(cadence).toInt(), 7);
        QVERIFY(logText(window).contains("Loaded cached catalog: "_s));
        part<QSpinBox>(window, "cadenceSpin")->setValue(8);
        part<QCheckBox>(window, "keepFramesCheck")->setChecked(false);
        part<QCheckBox>(window, "createVideosCheck")->setChecked(false);
        WindowFixture::clickToolButton(window, "actionStartAcquisition");
        QCOMPARE(userSettings().value(cadence).toInt(), 7);
        QCOMPARE(boxes.shown, QStringList({"Orvik: Select at least one Helioviewer datasource."_s,
                                           "Orvik: Enable PNG frame storage or MP4 creation."_s}));
        QVERIFY(!part<QAction>(window, "actionStopAcquisition")->isEnabled());
    }

    void storedValuesAndPresets()
    {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const QString presets = // the last is none
            "acquisition/maxTimeErrorSeconds=101 acquisition/imageWidth=202 video/fps=30 "
            "video/crf=40 acquisition/keepFrames=0 video/create=0 "
            "acquisition/useSourceTimingProfiles=0 video/scaleOverlay=1"_s;
        const QStringList all = presets.split(QLatin1Char(' '));
        for (const QString &one : all)
            TestFolder::setKey(one.section(QLatin1Char('='), 0, 0),
                               one.section(QLatin1Char('='), 1));
        WindowFixture::writeCatalog(R"({"zero": {"sourceId": 0}, "group": {}})");
        userSettings().setValue("sources/selectedIds"_s, QStringList({"x"_s, "7"_s}));
        userSettings().setValue("acquisition/cadenceSeconds"_s, "soon"_s);
        const MainWindow window;
        QString values;
        for (const char *spin : {"timeErrorSpin", "widthSpin", "fpsSpin", "crfSpin", "cadenceSpin"})
            values += part<QSpinBox>(window, spin)->text() + QLatin1Char(' ');
        for (const char *box : {"keepFramesCheck", "createVideosCheck", "scaleOverlayCheck",
                                "sourceTimingProfilesCheck"})
            values += QString::number(part<QCheckBox>(window, box)->isChecked());
        QCOMPARE(values, "101 s 202 30 40 1 s 0000"_s);
        const QDateTime end = part<QDateTimeEdit>(window, "endEdit")->dateTime();
        QVERIFY(end.secsTo(now) <= 600 && end.secsTo(now) > 590);
        QCOMPARE(part<QDateTimeEdit>(window, "startEdit")->dateTime().secsTo(end), 3600);
        const auto *tree = part<QTreeWidget>(window, "sourcesTree");
        QVERIFY(!tree->currentItem() && tree->topLevelItem(1)->checkState(0) == Qt::Unchecked);
    }

    void layoutAndWordsOfTheWindow()
    {
        MainWindow window;
        auto *tree = part<QTreeWidget>(window, "sourcesTree");
        tree->setCurrentItem(tree->topLevelItem(0));
        const auto *meta = part<QLabel>(window, "previewMeta");
        const QString line = "Requested: 8888-88-88 88:88:88 UTC   |   Delta: +888 s"_s;
        QCOMPARE(meta->minimumSize(), QSize(meta->fontMetrics().horizontalAdvance(line),
                                            3 * meta->fontMetrics().lineSpacing()));
        window.show();
        auto *splitter = part<QSplitter>(window, "catalogSplitter");
        window.resize(3000, 1000);
        QTRY_VERIFY(std::abs(splitter->sizes().at(0) - 2 * splitter->sizes().at(1)) < 3);
        splitter->setChildrenCollapsible(false); // is stored with its sizes
        window.resize(1400, 1000);
        userSettings().setValue("sources/currentId"_s, 10); // a group is current now
        part<QDockWidget>(window, "infoDockWidget")->hide();
        window.close();
        QVERIFY(!userSettings().contains("sources/currentId"_s));
        QCOMPARE(userSettings().allKeys().size(), 17);
        TestFolder::setKey("acquisition/cadenceSeconds"_s, 240); // too late
        const MainWindow next;
        QCOMPARE(part<QSpinBox>(next, "cadenceSpin")->value(), 60);
        QVERIFY(!part<QSplitter>(next, "catalogSplitter")->childrenCollapsible());
        QCOMPARE(next.size(), QSize(1400, 1000));
        QVERIFY(part<QDockWidget>(next, "infoDockWidget")->isHidden());
        QCOMPARE(next.corner(Qt::BottomRightCorner), Qt::RightDockWidgetArea);
    }

    void brokenCacheAsksTheService()
    {
        WindowFixture::writeCatalog(QByteArray(catalog).left(40));
        TestFolder::setKey("network/apiBase"_s, nowhere);
        const BoxCloser boxes;
        const MainWindow window;
        const auto *refresh = part<QPushButton>(window, "refreshButton");
        QVERIFY(!refresh->isEnabled());
        part<QAction>(window, "actionRefreshCatalog")->trigger(); // of no use
        QCOMPARE(logText(window).count("] Refreshing Helioviewer datasource catalog...\n"_s), 1);
        QTRY_COMPARE_WITH_TIMEOUT(boxes.shown.size(), 1, 20'000);
        QVERIFY(refresh->isEnabled());
        QVERIFY(boxes.shown.first().startsWith("Helioviewer: getDataSources failed:\n"_s));
        QVERIFY(logText(window).contains("] ERROR getDataSources: curl: (7)"_s));
        QCOMPARE(part<QDockWidget>(window, "logWidget")->windowTitle(), "Log  -  ERR 1 / WARN 0"_s);
    }

    void answersOfTheService()
    {
        const QString name = "sys/helioviewer_sources.json"_s;
        const QJsonObject error{{"error"_s, QJsonObject{{"x"_s, 1}}}};
        WindowFixture::reset();
        TestFolder::setKey("network/apiBase"_s, nowhere);
        const BoxCloser boxes;
        MainWindow window;
        const auto *tree = part<QTreeWidget>(window, "sourcesTree");
        receive(window, error);
        QVERIFY(tree->topLevelItemCount() == 0 && !QFile::exists(TestFolder::path(name)));
        receive(window, {{"x"_s, QJsonObject()}}); // so far there is nothing to lose
        QVERIFY(tree->topLevelItemCount() == 1 && QFile::exists(TestFolder::path(name)));
        receive(window, {});
        QCOMPARE(tree->topLevelItemCount(), 1);
        TestFolder::setKey("paths/catalog"_s, "bin"_s); // a folder
        receive(window, {{"y"_s, QJsonObject{{"sourceId"_s, 1}}}});
        const QString log = logText(window);
        QCOMPARE(log.count("The answer has no datasource."_s), 2);
        QCOMPARE(log.count("] Helioviewer datasource catalog updated.\n"_s), 1);
        QCOMPARE(log.count("] WARNING: unable to save catalog cache in ./sys.\n"_s), 1);
    }

    void emptyCacheIsShownAndCostsNoTicks()
    {
        WindowFixture::writeCatalog("{}");
        const QString ticks = "sources/selectedIds"_s;
        userSettings().setValue(ticks, QStringList("10"_s));
        MainWindow window;
        QVERIFY(logText(window).contains("Loaded cached catalog: "_s));
        QVERIFY(!logText(window).contains("curl: "_s));
        window.close();
        QCOMPARE(userSettings().value(ticks).toStringList(), QStringList("10"_s));
    }

    void actionsReachTheDesktop()
    {
        const TestFolder::OutputRoot root;
        const QString film = root.path() + "/%1 film.mp4"_s;
        const QString help = TestFolder::path("doc/help.html"_s);
        QDir().mkpath(TestFolder::path("doc"_s));
        for (const QString &file : {film, help})
            QVERIFY(QFile(file).open(QIODevice::WriteOnly));
        QDesktopServices::setUrlHandler("file"_s, this, "open");
        MainWindow window;
        window.show();
        for (const char *action :
             {"actionPlayLatestVideo", "actionOpenOutputFolder", "actionHelpOrvik", "actionExit"})
            part<QAction>(window, action)->trigger();
        QTimer::singleShot(0, this, [] {
            qobject_cast<LicenseDialog *>(QApplication::activeModalWidget())->reject();
        });
        part<QAction>(window, "actionLicense")->trigger();
        QDesktopServices::unsetUrlHandler("file"_s);
        QCOMPARE(m_opened, QVector<QString>({film, root.path(), help}));
        QVERIFY(logText(window).contains("Playing video: "_s + film));
        QVERIFY(!window.isVisible());
    }

    /// Where the last one was, at first in the output folder.
    void chosenVideosArePlayed()
    {
        const TestFolder::OutputRoot root;
        const QTemporaryDir elsewhere;
        BoxCloser boxes;
        boxes.chosen = elsewhere.filePath("%1 film.mp4"_s);
        QVERIFY(QFile(boxes.chosen).open(QIODevice::WriteOnly));
        QDesktopServices::setUrlHandler("file"_s, this, "open");
        const MainWindow window;
        part<QAction>(window, "actionPlayLatestVideo")->trigger(); // finds none, and asks
        const QString film = std::exchange(boxes.chosen, QString());
        part<QAction>(window, "actionPlaySelectedVideo")->trigger(); // and nothing is chosen
        QDesktopServices::unsetUrlHandler("file"_s);
        QCOMPARE(m_opened, QVector<QString>({film}));
        QCOMPARE(boxes.shown.join(QLatin1Char('|')),
                 "Play latest video: No MP4 video was found under:\n%1\n\nSelect a video manually?|"
                 "Select video: %1|Select video: %2"_s.arg(root.path(), elsewhere.path()));
    }

    void stoppedAndClosedAtEveryStage_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("stage");
        QTest::addColumn<int>("end");                        // a signal, or one of those above
        for (const int end : {stopping, closing, SIGTERM}) { // each signal is heard once
            QTest::addRow("probing, %d", end) << "GOES-R SUVI 195 "
                                              << "Analyzing" << end;
            QTest::addRow("downloading, %d", end) << "AIA 171 "
                                                  << "AIA 171  " << (end > 0 ? SIGHUP : end);
            QTest::addRow("encoding, %d", end) << "AIA 171 "
                                               << "Encoding videos" << (end > 0 ? SIGINT : end);
        }
    }

    void stoppedAndClosedAtEveryStage()
    {
        QFETCH(QString, source);
        QFETCH(QString, stage);
        QFETCH(int, end);
        const TestFolder::OutputRoot output;
        bool hasActed = false;
        {
            MainWindow window;
            prepareRun(window, source);
            connect(&m_signals, &TerminationSignals::received, &window, &MainWindow::shutDown);
            const QStringList idleParts = enabledParts(window);
            QCOMPARE(idleParts.size(), 18);
            const auto act = [&] {
                QCOMPARE(enabledParts(window), QStringList("actionStopAcquisition"_s));
                part<QAction>(window, "actionRefreshCatalog")->trigger();
                WindowFixture::clickLeaf(window, "AIA 193 "_s);
                if (end > 0)
                    std::raise(end);
                else if (end == closing)
                    window.close();
                else {
                    WindowFixture::clickToolButton(window, "actionStopAcquisition");
                    QVERIFY(QMetaObject::invokeMethod(&window, "stopAcquisition"));
                }
            };
            connect(window.findChild<AcquisitionController *>(),
                    &AcquisitionController::stateChanged, &window, [&](const QString &text) {
                        if (text.startsWith(stage) && !std::exchange(hasActed, true))
                            QTimer::singleShot(0, &window, act);
                    });
            WindowFixture::clickToolButton(window, "actionStartAcquisition");
            QCOMPARE(part<QLabel>(window, "previewLabel")->text(),
                     "Waiting for the first accepted frame..."_s);
            QVERIFY(window.statusBar()->currentMessage() != "Ready"_s);
            QTRY_VERIFY_WITH_TIMEOUT(hasActed, 20'000);
            if (end != stopping)
                QTRY_VERIFY_WITH_TIMEOUT(!window.isVisible(), 20'000);
            if (end != closing) {
                QTRY_COMPARE_WITH_TIMEOUT(enabledParts(window), idleParts, 20'000);
                QCOMPARE(window.statusBar()->currentMessage(), "Ready"_s);
            }
            QCOMPARE(logText(window).count("Session canceled."_s), end == closing ? 0 : 1);
            QCOMPARE(WindowFixture::findLeaf(window, "AIA 193 "_s)->checkState(0), Qt::Unchecked);
        }
        QCOMPARE(m_server.requestCount(Operation::GetDataSources), 0);
        const QDir session(output.path() + "/20240501_120000__20240501_120300"_s);
        QVERIFY(session.exists("manifest.csv"_s));
        QCOMPARE(session.exists("session.json"_s), end != closing);
    }

private:
    static void receive(MainWindow &window, const QJsonObject &catalogAnswer)
    {
        QVERIFY(QMetaObject::invokeMethod(&window, "onCatalogReceived",
                                          Q_ARG(QJsonObject, catalogAnswer)));
    }

    /// A window on the service, with one datasource ticked.
    void prepareRun(MainWindow &window, const QString &source)
    {
        TestFolder::setKey("network/apiBase"_s, m_server.baseUrl());
        QVERIFY(QMetaObject::invokeMethod(&window, "refreshSources"));
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QTRY_VERIFY(part<QPushButton>(window, "refreshButton")->isEnabled());
        const QDateTime start(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC);
        part<QDateTimeEdit>(window, "startEdit")->setDateTime(start);
        part<QDateTimeEdit>(window, "endEdit")->setDateTime(start.addSecs(180));
        part<QSpinBox>(window, "widthSpin")->setValue(128);
        WindowFixture::clickLeaf(window, source);
        m_server.clearJournal();
    }

    TerminationSignals m_signals;
    Simulator::Server m_server{Simulator::Archive::sample()};
    QVector<QString> m_opened;
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
