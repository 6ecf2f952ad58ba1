#include "tests/support/testfolder.h"
#include "tests/ui/windowfixture.h"

#include <QAccessible>
#include <QAction>
#include <QCheckBox>
#include <QDateTimeEdit>
#include <QDesktopServices>
#include <QDockWidget>
#include <QJsonObject>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTextBrowser>
#include <QToolBar>
#include <QTreeWidget>
#include <QtTest>

using WindowFixture::BoxCloser;
using WindowFixture::logText;
using WindowFixture::part;
using WindowFixture::userSettings;

namespace {

constexpr char catalog[] = R"({"SDO": {"AIA": {
    "171": {"sourceId": 10, "nickname": "AIA 171", "start": "2010", "end": "2024"},
    "<b>": {"sourceId": 13, "nickname": "<b>AIA</b>"}}}})";

/// The focusable parts below @p interface that a screen reader could not name.
QStringList nameless(QAccessibleInterface *interface)
{
    QStringList found;
    const QAccessible::State state = interface->state();
    if (state.focusable && !state.invisible && interface->text(QAccessible::Name).isEmpty()) {
        const QObject *object = interface->object();
        found.append(object ? object->objectName() + QLatin1Char('/') +
                                  QLatin1String(object->metaObject()->className())
                            : QString::number(interface->role()));
    }
    for (int i = 0; i < interface->childCount(); ++i)
        found += nameless(interface->child(i));
    return found;
}

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { WindowFixture::isolateUserSettings(); }
    void init();
    void everyInteractivePartHasANameAndAKey();
    void detailsFollowCurrentAndSampling();
    void refusedStartSavesSettingsAndKeepsTheLog();
    void presetCountsUntilTheUserSaved();
    void wrongStoredValues();
    void brokenCacheAsksTheService();
    void answerWithoutDatasourcesIsAnError();
    void emptyCacheIsShownAndCostsNoTicks();
    void vanishedPreviewIsAWarning();
    void unwritableCacheIsAWarning();
    void playsTheNewestVideo();

public slots:
    void open(const QUrl &url) { m_opened.append(url.toLocalFile()); }

private:
    QVector<QString> m_opened;
};

void TestMainWindow::init()
{
    WindowFixture::reset();
    WindowFixture::writeCatalog(catalog);
    m_opened.clear();
}

void TestMainWindow::everyInteractivePartHasANameAndAKey()
{
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    auto *tabs = window.findChild<QTabWidget *>();
    for (int tab = 0; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        QCOMPARE(nameless(QAccessible::queryAccessibleInterface(&window)).join(QLatin1Char(' ')),
                 QString());
    }
    QWidget *start = part<QToolBar>(window, "mainToolBar")
                         ->widgetForAction(part<QAction>(window, "actionStartAcquisition"));
    for (int presses = 0; window.focusWidget() != start && presses < 40; ++presses)
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    QCOMPARE(window.focusWidget(), start);
    part<QToolBar>(window, "mainToolBar")->hide();
    BoxCloser boxes; // no datasource is ticked
    QTest::keyClick(&window, Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(boxes.shown.size(), 1);
    const QFontMetrics log = part<QTextEdit>(window, "log")->fontMetrics();
    QCOMPARE(log.horizontalAdvance(QStringLiteral("iiii")),
             log.horizontalAdvance(QStringLiteral("WWWW")));
}

void TestMainWindow::detailsFollowCurrentAndSampling()
{
    userSettings().setValue(QStringLiteral("sources/currentId"), 10);
    MainWindow window;
    const auto *details = part<QTextBrowser>(window, "catalogInfo");
    QVERIFY(QMetaObject::invokeMethod(&window, "onSourceTimingAnalyzed", Q_ARG(int, 10),
                                      Q_ARG(int, 9), Q_ARG(int, 240), Q_ARG(int, 240),
                                      Q_ARG(int, 240)));
    QVERIFY(details->toPlainText().contains(QStringLiteral("requested sampling is 1 min")));
    part<QSpinBox>(window, "cadenceSpin")->stepUp();
    QVERIFY(details->toPlainText().contains(QStringLiteral("not prepared yet")));

    part<QDateTimeEdit>(window, "startEdit")
        ->setDateTime(part<QDateTimeEdit>(window, "endEdit")->dateTime());
    part<QSpinBox>(window, "fpsSpin")->setValue(50);
    QCOMPARE(part<QLabel>(window, "estimateLabel")->text(),
             QStringLiteral("Nominal estimate: 1 frame(s) per datasource  |  video 00:00:00.020 @ "
                            "50 fps"));
}

void TestMainWindow::refusedStartSavesSettingsAndKeepsTheLog()
{
    MainWindow window;
    window.show();
    part<QSpinBox>(window, "cadenceSpin")->setValue(7);
    BoxCloser boxes;
    WindowFixture::clickToolButton(window, "actionStartAcquisition");
    QCOMPARE(userSettings().value(QStringLiteral("acquisition/cadenceSeconds")).toInt(), 7);
    QVERIFY(logText(window).contains(QStringLiteral("Loaded cached catalog: ")));

    part<QSpinBox>(window, "cadenceSpin")->setValue(8);
    part<QCheckBox>(window, "keepFramesCheck")->setChecked(false);
    part<QCheckBox>(window, "createVideosCheck")->setChecked(false);
    WindowFixture::clickToolButton(window, "actionStartAcquisition");
    QCOMPARE(userSettings().value(QStringLiteral("acquisition/cadenceSeconds")).toInt(), 7);
    QCOMPARE(boxes.shown,
             QStringList({QStringLiteral("Orvik: Select at least one Helioviewer datasource."),
                          QStringLiteral("Orvik: Enable PNG frame storage or MP4 creation.")}));
    QVERIFY(!part<QAction>(window, "actionStopAcquisition")->isEnabled());
}

void TestMainWindow::presetCountsUntilTheUserSaved()
{
    TestFolder::setKey(QStringLiteral("acquisition/cadenceSeconds"), 120);
    TestFolder::setKey(QStringLiteral("video/sourceOverlay"), false);
    MainWindow window;
    QCOMPARE(part<QSpinBox>(window, "cadenceSpin")->value(), 120);
    QVERIFY(part<QCheckBox>(window, "sourceOverlayCheck")->isChecked());
    window.close();
    TestFolder::setKey(QStringLiteral("acquisition/cadenceSeconds"), 240);
    QCOMPARE(part<QSpinBox>(MainWindow(), "cadenceSpin")->value(), 120);
}

void TestMainWindow::wrongStoredValues()
{
    MainWindow().close();
    const QStringList keys = userSettings().allKeys();
    QVERIFY(keys.size() >= 17);
    const QStringList texts = {QStringLiteral("abc"), QStringLiteral("13")};
    for (const QVariant &value : {QVariant(texts), QVariant(QByteArray("\0\xff\x01", 3)),
                                  QVariant(QString(500'000, QLatin1Char('x')))}) {
        for (const QString &key : keys)
            userSettings().setValue(key, value);
        userSettings().sync();
        const MainWindow window;
        QCOMPARE(part<QSpinBox>(window, "cadenceSpin")->value(), 1);
        QCOMPARE(part<QSpinBox>(window, "crfSpin")->value(), 0);
        QVERIFY(part<QDateTimeEdit>(window, "startEdit")->dateTime().isValid());
        QCOMPARE(WindowFixture::findLeaf(window, QStringLiteral("<b>AIA"))->checkState(0),
                 value.type() == QVariant::StringList ? Qt::Checked : Qt::Unchecked);
    }
}

void TestMainWindow::brokenCacheAsksTheService()
{
    WindowFixture::writeCatalog(QByteArray(catalog).left(40));
    TestFolder::setKey(QStringLiteral("network/apiBase"), QStringLiteral("http://127.0.0.1:9/<i>"));
    BoxCloser boxes;
    const MainWindow window;
    const auto *refresh = part<QPushButton>(window, "refreshButton");
    QVERIFY(!refresh->isEnabled());
    QTRY_COMPARE_WITH_TIMEOUT(boxes.shown.size(), 1, 20'000);
    QVERIFY(refresh->isEnabled());
    QVERIFY(
        boxes.shown.first().startsWith(QStringLiteral("Helioviewer: getDataSources failed:\n")));
    QVERIFY(logText(window).contains(QStringLiteral("] ERROR getDataSources: curl: (7)")));
    QCOMPARE(part<QDockWidget>(window, "logWidget")->windowTitle(),
             QStringLiteral("Log  -  ERR 1 / WARN 0"));
}

void TestMainWindow::answerWithoutDatasourcesIsAnError()
{
    WindowFixture::reset();
    const QJsonObject error{{QStringLiteral("error"), QJsonObject{{QStringLiteral("errno"), 12}}}};
    const QString cache = TestFolder::path(QStringLiteral("sys/helioviewer_sources.json"));
    TestFolder::setKey(QStringLiteral("network/apiBase"), QStringLiteral("http://127.0.0.1:9"));
    for (const bool first : {true, false}) {
        if (!first)
            WindowFixture::writeCatalog(catalog);
        BoxCloser boxes;
        MainWindow window;
        const int items = part<QTreeWidget>(window, "sourcesTree")->topLevelItemCount();
        QCOMPARE(items, first ? 0 : 1);
        for (const QJsonObject &answer : {error, first ? error : QJsonObject()})
            QVERIFY(QMetaObject::invokeMethod(&window, "onCatalogReceived",
                                              Q_ARG(QJsonObject, answer)));
        QCOMPARE(part<QTreeWidget>(window, "sourcesTree")->topLevelItemCount(), items);
        QCOMPARE(logText(window).count(QStringLiteral("The answer holds no datasource.")), 2);
        QCOMPARE(QFile::exists(cache), !first);
    }
}

void TestMainWindow::emptyCacheIsShownAndCostsNoTicks()
{
    WindowFixture::writeCatalog("{}");
    const QString ticks = QStringLiteral("sources/selectedIds");
    userSettings().setValue(ticks, QStringList(QStringLiteral("10")));
    MainWindow window;
    QVERIFY(logText(window).contains(QStringLiteral("Loaded cached catalog: ")));
    QVERIFY(!logText(window).contains(QStringLiteral("curl: ")));
    window.close();
    QCOMPARE(userSettings().value(ticks).toStringList(), QStringList(QStringLiteral("10")));
}

void TestMainWindow::vanishedPreviewIsAWarning()
{
    MainWindow window;
    const QString file = QStringLiteral("/no/frame.png");
    const QDateTime now = QDateTime::currentDateTimeUtc();
    QVERIFY(QMetaObject::invokeMethod(&window, "onPreviewReady", Q_ARG(QString, QString()),
                                      Q_ARG(QString, file), Q_ARG(QDateTime, now),
                                      Q_ARG(QDateTime, now), Q_ARG(qint64, 0)));
    QVERIFY(
        logText(window).contains(QStringLiteral("WARNING: unable to load preview image ") + file));
}

void TestMainWindow::unwritableCacheIsAWarning()
{
    TestFolder::setKey(QStringLiteral("paths/catalog"), QStringLiteral("bin")); // a folder
    TestFolder::setKey(QStringLiteral("network/apiBase"), QStringLiteral("http://127.0.0.1:9"));
    BoxCloser boxes;
    MainWindow window;
    const QJsonObject answer{{QStringLiteral("x"), QJsonObject()}};
    QVERIFY(QMetaObject::invokeMethod(&window, "onCatalogReceived", Q_ARG(QJsonObject, answer)));
    QCOMPARE(part<QTreeWidget>(window, "sourcesTree")->topLevelItemCount(), 1);
    QVERIFY(logText(window).contains(
        QStringLiteral("WARNING: unable to save catalog cache in ./sys.")));
    QVERIFY(!logText(window).contains(QStringLiteral("catalog updated.")));
}

void TestMainWindow::playsTheNewestVideo()
{
    const TestFolder::OutputRoot root;
    const QString film = root.path() + QStringLiteral("/%1 film.mp4");
    QVERIFY(QFile(film).open(QIODevice::WriteOnly));
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open");
    const MainWindow window;
    part<QAction>(window, "actionPlayLatestVideo")->trigger();
    part<QAction>(window, "actionOpenOutputFolder")->trigger();
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    QCOMPARE(m_opened, QVector<QString>({film, root.path()}));
    QVERIFY(logText(window).contains(QStringLiteral("Playing video: ") + film));
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
