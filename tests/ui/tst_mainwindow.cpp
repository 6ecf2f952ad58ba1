#include "acquisition/acquisitioncontroller.h"
#include "app/terminationsignals.h"
#include "simulator/archive/archive.h"
#include "simulator/service/server.h"
#include "tests/support/literals.h"
#include "tests/support/testfolder.h"
#include "tests/ui/windowfixture.h"

#include <QAccessible>
#include <QAction>
#include <QCheckBox>
#include <QDateTimeEdit>
#include <QDesktopServices>
#include <QDockWidget>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTextBrowser>
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

class TestMainWindow : public QObject
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

    void detailsFollowCurrentAndSampling()
    {
        userSettings().setValue("sources/currentId"_s, 10);
        MainWindow window;
        const auto *details = part<QTextBrowser>(window, "catalogInfo");
        QVERIFY(QMetaObject::invokeMethod(&window, "onSourceTimingAnalyzed", Q_ARG(int, 10),
                                          Q_ARG(int, 9), Q_ARG(int, 240), Q_ARG(int, 180),
                                          Q_ARG(int, 300)));
        QVERIFY(details->toPlainText().contains("requested sampling is 1 min"_s));
        part<QSpinBox>(window, "cadenceSpin")->stepUp();
        QVERIFY(details->toPlainText().contains("not prepared yet"_s));
    }

    void refusedStartSavesSettingsAndKeepsTheLog()
    {
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        const QString cadence = "acquisition/cadenceSeconds"_s;
        part<QSpinBox>(window, "cadenceSpin")->setValue(7);
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

    void presetCountsUntilTheUserSaved()
    {
        TestFolder::setKey("acquisition/cadenceSeconds"_s, 120);
        TestFolder::setKey("video/sourceOverlay"_s, false);
        MainWindow window;
        QCOMPARE(part<QSpinBox>(window, "cadenceSpin")->value(), 120);
        QVERIFY(part<QCheckBox>(window, "sourceOverlayCheck")->isChecked());
        window.close();
        TestFolder::setKey("acquisition/cadenceSeconds"_s, 240);
        QCOMPARE(part<QSpinBox>(MainWindow(), "cadenceSpin")->value(), 120);
    }

    void brokenCacheAsksTheService()
    {
        WindowFixture::writeCatalog(QByteArray(catalog).left(40));
        TestFolder::setKey("network/apiBase"_s, nowhere);
        const BoxCloser boxes;
        const MainWindow window;
        const auto *refresh = part<QPushButton>(window, "refreshButton");
        QVERIFY(!refresh->isEnabled());
        QTRY_COMPARE_WITH_TIMEOUT(boxes.shown.size(), 1, 20'000);
        QVERIFY(refresh->isEnabled());
        QVERIFY(boxes.shown.first().startsWith("Helioviewer: getDataSources failed:\n"_s));
        QVERIFY(logText(window).contains("] ERROR getDataSources: curl: (7)"_s));
        QCOMPARE(part<QDockWidget>(window, "logWidget")->windowTitle(), "Log  -  ERR 1 / WARN 0"_s);
    }

    void answerWithoutDatasourcesIsAnError()
    {
        const QJsonObject error{{"error"_s, QJsonObject{{"x"_s, 1}}}};
        for (const bool cached : {false, true}) {
            if (!cached)
                WindowFixture::reset();
            else
                WindowFixture::writeCatalog(catalog);
            TestFolder::setKey("network/apiBase"_s, nowhere);
            const BoxCloser boxes;
            MainWindow window;
            for (const QJsonObject &answer : {error, cached ? QJsonObject() : error})
                receive(window, answer);
            QCOMPARE(part<QTreeWidget>(window, "sourcesTree")->topLevelItemCount(), int(cached));
            QCOMPARE(logText(window).count("The answer holds no datasource."_s), 2);
            QCOMPARE(QFile::exists(TestFolder::path("sys/helioviewer_sources.json"_s)), cached);
        }
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

    void unwritableCacheIsAWarning()
    {
        TestFolder::setKey("paths/catalog"_s, "bin"_s); // a folder
        TestFolder::setKey("network/apiBase"_s, nowhere);
        const BoxCloser boxes;
        MainWindow window;
        receive(window, {{"x"_s, QJsonObject()}});
        QCOMPARE(part<QTreeWidget>(window, "sourcesTree")->topLevelItemCount(), 1);
        QVERIFY(logText(window).contains("WARNING: unable to save catalog cache in ./sys."_s));
        QVERIFY(!logText(window).contains("catalog updated."_s));
    }

    void playsTheNewestVideo()
    {
        const TestFolder::OutputRoot root;
        const QString film = root.path() + "/%1 film.mp4"_s;
        QVERIFY(QFile(film).open(QIODevice::WriteOnly));
        QDesktopServices::setUrlHandler("file"_s, this, "open");
        const MainWindow window;
        part<QAction>(window, "actionPlayLatestVideo")->trigger();
        part<QAction>(window, "actionOpenOutputFolder")->trigger();
        QDesktopServices::unsetUrlHandler("file"_s);
        QCOMPARE(m_opened, QVector<QString>({film, root.path()}));
        QVERIFY(logText(window).contains("Playing video: "_s + film));
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
                if (end == closing)
                    window.close();
                else if (end != stopping)
                    std::raise(end);
                for (int presses = 0; end == stopping && presses < 2; ++presses)
                    QVERIFY(QMetaObject::invokeMethod(&window, "stopAcquisition"));
            };
            connect(window.findChild<AcquisitionController *>(),
                    &AcquisitionController::stateChanged, &window, [&](const QString &text) {
                        if (text.startsWith(stage) && !std::exchange(hasActed, true))
                            QTimer::singleShot(0, &window, act);
                    });
            WindowFixture::clickToolButton(window, "actionStartAcquisition");
            QCOMPARE(part<QLabel>(window, "previewLabel")->text(),
                     "Waiting for the first accepted frame..."_s);
            QTRY_VERIFY_WITH_TIMEOUT(hasActed, 20'000);
            if (end != stopping)
                QTRY_VERIFY_WITH_TIMEOUT(!window.isVisible(), 20'000);
            if (end != closing)
                QTRY_COMPARE_WITH_TIMEOUT(enabledParts(window), idleParts, 20'000);
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
