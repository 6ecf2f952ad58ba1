#include "acquisition/acquisitioncontroller.h"
#include "app/terminationsignals.h"
#include "simulator/archive/archive.h"
#include "simulator/service/server.h"
#include "tests/support/testfolder.h"
#include "tests/ui/windowfixture.h"

#include <QAction>
#include <QDateTimeEdit>
#include <QDir>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QStatusBar>
#include <QTextBrowser>
#include <QTreeWidget>
#include <QtTest>

#include <csignal>
#include <utility>

using WindowFixture::BoxCloser;
using WindowFixture::logText;
using WindowFixture::part;

/// The whole road of a user: the window on a service, real curl and ffmpeg, real clicks and keys.
class TestWindowRoad : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void tickStartWatchStopRestart();
    void filmIsMadeAndTheWindowIdleAgain();
    void actionsAtEveryStage_data();
    void actionsAtEveryStage();
    void everythingIsRefusedOrSafeWhileRunning();

private:
    static void prepareRun(MainWindow &window, const QString &source, int minutes);
    static QStringList enabledParts(const MainWindow &window);

    TerminationSignals m_signals;
    Simulator::Server m_server{Simulator::Archive::sample()};
    std::unique_ptr<TestFolder::OutputRoot> m_output;
};

void TestWindowRoad::initTestCase()
{
    WindowFixture::isolateUserSettings();
    QString error;
    QVERIFY2(m_server.start(&error), qPrintable(error));
}

void TestWindowRoad::init()
{
    WindowFixture::reset();
    m_server.clearFaults();
    TestFolder::setKey(QStringLiteral("network/apiBase"), m_server.baseUrl());
    m_output = std::make_unique<TestFolder::OutputRoot>();
}

void TestWindowRoad::prepareRun(MainWindow &window, const QString &source, int minutes)
{
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QTRY_VERIFY(part<QTreeWidget>(window, "sourcesTree")->topLevelItemCount() > 0);
    const QDateTime start(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC);
    part<QDateTimeEdit>(window, "startEdit")->setDateTime(start);
    part<QDateTimeEdit>(window, "endEdit")->setDateTime(start.addSecs(qint64(60) * minutes));
    part<QSpinBox>(window, "widthSpin")->setValue(128);
    WindowFixture::clickLeaf(window, source);
}

/// What of all that a run locks or frees can be used now.
QStringList TestWindowRoad::enabledParts(const MainWindow &window)
{
    const QString parts = QStringLiteral(
        "sourcesTree refreshButton aiaButton clearButton startEdit endEdit cadenceSpin "
        "timeErrorSpin sourceTimingProfilesCheck widthSpin fpsSpin crfSpin keepFramesCheck "
        "sourceOverlayCheck scaleOverlayCheck createVideosCheck actionCreateRoiVideo "
        "actionStartAcquisition actionStopAcquisition");
    QStringList enabled;
    const QStringList names = parts.split(QLatin1Char(' '));
    for (const QString &name : names) {
        if (window.findChild<QObject *>(name)->property("enabled").toBool())
            enabled.append(name);
    }
    return enabled;
}

void TestWindowRoad::tickStartWatchStopRestart()
{
    {
        MainWindow window;
        prepareRun(window, QStringLiteral("AIA 171 "), 600);
        part<QSpinBox>(window, "crfSpin")->setValue(30);
        const QStringList idleParts = enabledParts(window);
        QCOMPARE(idleParts.size(), 18);
        WindowFixture::clickToolButton(window, "actionStartAcquisition");
        QCOMPARE(enabledParts(window), QStringList(QStringLiteral("actionStopAcquisition")));
        QCOMPARE(logText(window).section(QLatin1Char('\n'), 0, 0).mid(11),
                 QStringLiteral("Acquisition started."));

        const auto *preview = part<QLabel>(window, "previewLabel");
        QCOMPARE(preview->text(), QStringLiteral("Waiting for the first accepted frame..."));
        QTRY_VERIFY_WITH_TIMEOUT(!preview->pixmap(Qt::ReturnByValue).isNull(), 20'000);
        QVERIFY2(QRegularExpression(QStringLiteral("^Source: AIA 171   \\|   Actual: 2024-05-01 "
                                                   "1[12]:\\d\\d:\\d\\d UTC\nRequested: 2024-05-01 "
                                                   "12:0\\d:00 UTC   \\|   Delta: [+-]\\d+ s$"))
                     .match(part<QLabel>(window, "previewMeta")->text())
                     .hasMatch(),
                 qPrintable(part<QLabel>(window, "previewMeta")->text()));
        QCOMPARE(part<QProgressBar>(window, "progress")->maximum(), 601 + 1);
        const QStatusBar *status = window.statusBar();
        QTRY_VERIFY(status->currentMessage().contains(QStringLiteral(" of 601 requests, about ")));

        WindowFixture::clickToolButton(window, "actionStopAcquisition");
        QCOMPARE(enabledParts(window), idleParts);
        QCOMPARE(part<QLabel>(window, "stateLabel")->text(), QStringLiteral("Canceled"));
        QCOMPARE(status->currentMessage(), QStringLiteral("Ready"));
        QVERIFY(logText(window).contains(QStringLiteral("] Session canceled.\n")));
        QVERIFY(logText(window).contains(QStringLiteral("] Output: ") + m_output->path()));
        window.close();
    }
    m_server.clearJournal();
    const MainWindow window;
    QCOMPARE(m_server.requestCount(Simulator::Operation::GetDataSources), 0);
    const QTreeWidgetItem *current = part<QTreeWidget>(window, "sourcesTree")->currentItem();
    QVERIFY(current != nullptr);
    QVERIFY(current->text(0).startsWith(QStringLiteral("AIA 171 ")));
    QCOMPARE(current->checkState(0), Qt::Checked);
    QCOMPARE(part<QSpinBox>(window, "crfSpin")->value(), 30);
    QCOMPARE(part<QDateTimeEdit>(window, "endEdit")->dateTime(),
             QDateTime(QDate(2024, 5, 1), QTime(22, 0), Qt::UTC));
}

void TestWindowRoad::filmIsMadeAndTheWindowIdleAgain()
{
    MainWindow window;
    prepareRun(window, QStringLiteral("AIA 171 "), 2);
    QTest::keyClick(&window, Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(!part<QAction>(window, "actionStartAcquisition")->isEnabled());
    QTRY_COMPARE_WITH_TIMEOUT(part<QLabel>(window, "stateLabel")->text(),
                              QStringLiteral("Completed"), 30'000);
    QVERIFY(part<QAction>(window, "actionStartAcquisition")->isEnabled());
    QVERIFY(logText(window).contains(QStringLiteral("] Video completed: AIA 171\n")));
    QVERIFY(part<QTextBrowser>(window, "catalogInfo")
                ->toPlainText()
                .contains(QStringLiteral("samples directly every 1 min")));
    QDir output(m_output->path());
    QVERIFY(output.exists(QStringLiteral("20240501_120000__20240501_120200/"
                                         "AIA_171_20240501_120000/AIA_171_20240501_120000.mp4")));
}

void TestWindowRoad::actionsAtEveryStage_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("stage");
    QTest::addColumn<QString>("end");
    QTest::addColumn<int>("signalNumber");
    const QString suvi = QStringLiteral("GOES-R SUVI 195 ");
    const QString aia = QStringLiteral("AIA 171 ");
    for (const QString &end :
         {QStringLiteral("stop"), QStringLiteral("close"), QStringLiteral("signal")}) {
        const auto row = [end](const char *stage) -> QTestData & {
            return QTest::addRow("%s, %s", stage, qPrintable(end));
        };
        row("probing") << suvi << QStringLiteral("Analyzing") << end << SIGTERM;
        row("downloading") << aia << QStringLiteral("AIA 171  ") << end << SIGHUP;
        row("encoding") << aia << QStringLiteral("Encoding videos") << end << SIGINT;
    }
}

void TestWindowRoad::actionsAtEveryStage()
{
    QFETCH(QString, source);
    QFETCH(QString, stage);
    QFETCH(QString, end);
    QFETCH(int, signalNumber);
    const bool stops = end == QLatin1String("stop");
    const bool closes = end == QLatin1String("close");
    bool hasActed = false;
    {
        MainWindow window;
        prepareRun(window, source, 3);
        connect(&m_signals, &TerminationSignals::received, &window, &MainWindow::shutDown);
        m_server.clearJournal();
        const auto act = [&] {
            part<QAction>(window, "actionRefreshCatalog")->trigger();
            if (closes)
                window.close();
            else if (stops)
                part<QAction>(window, "actionStopAcquisition")->trigger();
            else
                std::raise(signalNumber);
        };
        connect(window.findChild<AcquisitionController *>(), &AcquisitionController::stateChanged,
                &window, [&](const QString &text) {
                    if (text.startsWith(stage) && !std::exchange(hasActed, true))
                        QTimer::singleShot(0, &window, act);
                });
        WindowFixture::clickToolButton(window, "actionStartAcquisition");
        if (!stops)
            QTRY_VERIFY_WITH_TIMEOUT(!window.isVisible(), 20'000);
        if (!closes)
            QTRY_COMPARE_WITH_TIMEOUT(part<QLabel>(window, "stateLabel")->text(),
                                      QStringLiteral("Canceled"), 20'000);
        QCOMPARE(part<QAction>(window, "actionStartAcquisition")->isEnabled(), !closes);
    }
    QCOMPARE(m_server.requestCount(Simulator::Operation::GetDataSources), 0);
    const QDir session(m_output->path() + QStringLiteral("/20240501_120000__20240501_120300"));
    QVERIFY(session.exists(QStringLiteral("manifest.csv")));
    QCOMPARE(session.exists(QStringLiteral("session.json")), !closes);
}

void TestWindowRoad::everythingIsRefusedOrSafeWhileRunning()
{
    MainWindow window;
    prepareRun(window, QStringLiteral("AIA 171 "), 600);
    WindowFixture::clickToolButton(window, "actionStartAcquisition");
    m_server.clearJournal();
    BoxCloser boxes(QMessageBox::No);
    part<QAction>(window, "actionRefreshCatalog")->trigger();
    part<QAction>(window, "actionPlayLatestVideo")->trigger();
    QCOMPARE(boxes.shown.size(), 1); // no video yet
    WindowFixture::clickToolButton(window, "actionStartAcquisition");
    WindowFixture::clickLeaf(window, QStringLiteral("AIA 193 "));
    QVERIFY(QMetaObject::invokeMethod(&window, "stopAcquisition"));
    QVERIFY(QMetaObject::invokeMethod(&window, "stopAcquisition"));
    QCOMPARE(logText(window).count(QStringLiteral("Session canceled.")), 1);
    QCOMPARE(m_server.requestCount(Simulator::Operation::GetDataSources), 0);
    QCOMPARE(WindowFixture::findLeaf(window, QStringLiteral("AIA 193 "))->checkState(0),
             Qt::Unchecked);
}

QTEST_MAIN(TestWindowRoad)
#include "tst_windowroad.moc"
