#include "app/applicationlook.h"
#include "app/applicationstyle.h"
#include "tests/support/literals.h"
#include "ui/acquisitionestimate.h"
#include "ui/catalogtree.h"
#include "ui/licensedialog.h"
#include "ui/logview.h"
#include "ui/outputsearch.h"
#include "ui/previewpane.h"

#include <QDialogButtonBox>
#include <QDockWidget>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QStyleFactory>
#include <QStyleOption>
#include <QTextBlock>
#include <QTextEdit>
#include <QToolTip>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QtTest>

namespace {

constexpr qreal screenRatio = 1.5;

constexpr char catalog[] = R"({
    "SDO": {"HMI": {"mag": {"sourceId": 19, "nickname": "HMI Mag"}},
            "AIA": {"171": {"sourceId": 10, "nickname": "AIA 171", "start": "2010", "end": null},
                    "1600": {"sourceId": 15, "nickname": "AIA 1600"},
                    "94": {"sourceId": 8, "nickname": "AIA 94", "child": {"sourceId": 99}}}},
    "Zero": {"sourceId": 0},
    "Empty": {"a": "text", "b": 7, "c": [{"sourceId": 4}]},
    "note": "no object"})";
constexpr char oneBand[] = R"({"SDO": {"171": {"sourceId": 10}}})";
constexpr char strangeIds[] =
    R"({"a": {"sourceId": "7"}, "b": {"sourceId": 1e12}, "c": {"sourceId": null}})";

QString create(const QTemporaryDir &folder, const char *name, int ageSeconds)
{
    QString path = folder.filePath(QLatin1String(name));
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) ||
        !file.setFileTime(QDateTime::currentDateTime().addSecs(-ageSeconds),
                          QFileDevice::FileModificationTime))
        qFatal("cannot create a file");
    return path;
}

/// A frame of one-pixel stripes, which any scaling or shift by half a pixel turns grey.
QImage stripes(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    for (int x = 0; x < size.width(); x += 2)
        painter.fillRect(x, 0, 1, size.height(), Qt::white);
    return image;
}

} // namespace

/// What the main window is made of, each part on its own.
class TestWindowParts final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_tree = std::make_unique<QTreeWidget>();
        m_selection = {};
        CatalogTree::prepare(m_tree.get());
        m_log.clear();
    }

    void groupsAndLeaves()
    {
        fill(catalog);
        QStringList texts;
        for (QTreeWidgetItemIterator it(m_tree.get()); *it; ++it)
            texts.append((*it)->text(0));
        QCOMPARE(texts.join(QLatin1Char('|')),
                 "Empty|SDO|AIA|AIA 94   [sourceId 8]|AIA 171   [sourceId 10]|"
                 "AIA 1600   [sourceId 15]|HMI|HMI Mag   [sourceId 19]|"
                 "Zero   [sourceId 0]"_s);
        const QTreeWidgetItem *group = item("AIA");
        QVERIFY(!CatalogTree::isLeaf(group));
        QVERIFY(!(group->flags() & Qt::ItemIsSelectable));
        QVERIFY(!group->data(0, Qt::CheckStateRole).isValid());
        QVERIFY(item("SDO")->isExpanded() && group->isExpanded());
        QCOMPARE(m_tree->currentItem(), nullptr);
    }

    void rebuildKeepsWhatStillExists()
    {
        m_selection = {{10, 19, 777}, 15};
        fill(catalog);
        QCOMPARE(tickedIds(), QVector<int>({10, 19}));
        QCOMPARE(m_tree->currentItem(), item("AIA 1600   [sourceId 15]"));
        fill(oneBand);
        QCOMPARE(tickedIds(), QVector<int>({10}));
        QCOMPARE(CatalogTree::currentId(m_tree.get()), -1);
        fill(catalog);
        QCOMPARE(tickedIds(), QVector<int>({10})); // 19 was gone for one rebuild
        QCOMPARE(m_tree->currentItem(), nullptr);
    }

    void aiaPresetReplacesTheSelection()
    {
        m_selection = {{15, 19}, 19};
        fill(catalog);
        QCOMPARE(CatalogTree::tickAiaBands(m_tree.get()), 2);
        QCOMPARE(tickedIds(), QVector<int>({8, 10}));
        QCOMPARE(CatalogTree::currentId(m_tree.get()), 19);
        CatalogTree::untickAll(m_tree.get());
        QVERIFY(tickedIds().isEmpty());
    }

    void strangeCatalogs()
    {
        m_selection = {{}, 0};
        fill(strangeIds);
        QCOMPARE(CatalogTree::currentId(m_tree.get()), 0);
        m_tree->clear();
        m_selection = {{0}, -1};
        fill(strangeIds);
        QCOMPARE(tickedIds().size(), 3);
        m_tree->clear();
        m_selection = {{1}, -1};
        fill(QByteArray("{\"a\":").repeated(900) + "{\"sourceId\":1}" +
             QByteArray("}").repeated(900));
        QCOMPARE(tickedIds().size(), 1);
        QVERIFY(m_tree->findItems("a"_s, Qt::MatchRecursive).at(99)->isExpanded());
    }

    void whatALeafTells()
    {
        fill(R"({"A": {"B": {"C": {"x": {"sourceId": -2, "nickname": "AIA 193"},
            "<i>": {"sourceId": 5, "start": "s", "end": "e",
                    "uiLabels": [{"label": "<L>", "name": "<N>"}]}}}}})");
        QVERIFY(item("B")->isExpanded() && !item("C")->isExpanded());
        QTreeWidgetItem *leaf = item("<i>   [sourceId 5]");
        QCOMPARE(CatalogTree::tickAiaBands(m_tree.get()), 1);
        QVERIFY(tickedIds().isEmpty()); // what is below 0 cannot be asked for
        QVERIFY(item("C")->isExpanded());
        const QString first = leaf->toolTip(0);
        CatalogTree::setAnalysis(leaf, {1, 0, 0, 0});
        CatalogTree::setAnalysis(leaf, {4, 3600, 60, 90}); // takes the first one's place
        QCOMPARE(leaf->toolTip(0), "A/B/C/<i>\nAvailable: s -> e\nCadence: 4 unique frames, "
                                   "effective median 1 h (min 1 min, max 1 min 30 s)."_s);
        const CatalogSource source = CatalogTree::source(leaf);
        QVERIFY(source.analysis->maxSeconds == 90 && source.source.path == "A/B/C/<i>"_s);
        const QString page = SourceDetails::page(source, {{}, {}, 60});
        QVERIFY(page.contains("<h2>&lt;i&gt;</h2>"_s));
        QVERIFY(page.contains("<tr><td><b>&lt;L&gt;</b></td><td>&lt;N&gt;</td></tr></table>"_s));
        m_tree->show();
        for (const QTreeWidgetItem *hovered : {leaf, item("AIA 193   [sourceId -2]")}) {
            QHelpEvent help(QEvent::ToolTip, m_tree->visualItemRect(hovered).center(), {});
            QVERIFY(QApplication::sendEvent(m_tree->viewport(), &help));
            const QString text = hovered->toolTip(0); // never taken for HTML
            QCOMPARE(QToolTip::text(), hovered == leaf ? Qt::convertFromPlainText(text) : text);
        }
        CatalogTree::clearAnalyses(m_tree.get());
        QVERIFY(!CatalogTree::source(leaf).analysis && leaf->toolTip(0) == first);
    }

    void cadencesInWords()
    {
        for (const auto &[words, found] :
             {std::pair("quick probe unavailable;", CadenceStatistics{0, 60, 60, 60}),
              {"1 unique frame in the", {1, 0, 0, 0}},
              {"observed range 1 s - 2 s.", {2, 1, 1, 2}},
              {"about <b>1 min 30 s", {3, 90, 60, 120}},
              {"sampling is 1 min,", {3, 91, 60, 120}}}) {
            const QString page = SourceDetails::page({{}, {}, found}, {{}, {}, 60});
            QVERIFY2(page.contains(QLatin1String(words)), words);
            QCOMPARE(page.contains("Orvik optimization"_s), found.medianSeconds > 90);
        }
        QCOMPARE(SourceDetails::toolTipWithCadence("x"_s, {2, 1, 1, 2}).count("median 1 s"_s), 1);
        QVERIFY(
            SourceDetails::toolTipWithCadence("x"_s, {1, 0, 0, 0}).contains(" 1 unique frame "_s));
    }

    void titleCountsUntilCleared()
    {
        for (const char *text : {"warning: x failed", "ERROR x", "plain", "ERROR y"})
            m_log.append(QString::fromLatin1(text));
        QCOMPARE(m_dock.windowTitle(), "Log  -  ERR 2 / WARN 1"_s);
        m_log.append("OK x"_s);
        m_log.append("curl: x"_s);
        QString formats;
        for (QTextBlock line = m_edit.document()->begin(); line.length() > 1; line = line.next()) {
            QTextCursor end(line);
            end.movePosition(QTextCursor::EndOfBlock);
            const QTextCharFormat format = end.charFormat();
            formats += format.foreground().color().name() + QString::number(format.fontWeight());
        }
        QCOMPARE(formats, "#ffbe4675#ff5a5a75#00000050#ff5a5a75#5adc7350#69afeb50"_s);
        m_log.clear();
        QCOMPARE(m_dock.windowTitle(), "Log  -  ERR 0 / WARN 0"_s);
        QVERIFY(m_edit.document()->isEmpty());
    }

    void anyTextIsOneEntry()
    {
        m_edit.show();
        for (const QString &text : {QString(), "a\nb\n\nc"_s, "<b>x</b> &amp; %1"_s,
                                    "太陽 الشمس ☀"_s, QString(1'000'000, QLatin1Char('x'))}) {
            m_log.clear();
            m_log.append(text);
            m_log.append("next"_s);
            const QString shown = m_edit.toPlainText();
            QCOMPARE(shown.mid(11, text.size()), text);
            QCOMPARE(shown.mid(11 + text.size(), 2), "\n["_s);
            QVERIFY(shown.endsWith("] next\n"_s));
            QVERIFY(m_edit.textCursor().atEnd());
            QVERIFY(!m_edit.document()->isUndoAvailable());
            QCOMPARE(m_edit.wordWrapMode() == QTextOption::WrapAnywhere, text.size() > 9999);
        }
    }

    void linesOfTheLog()
    {
        QSignalSpy layouts(m_edit.document(), &QTextDocument::contentsChanged);
        for (const char *start : {"", " ", "word "}) {
            m_log.clear();
            layouts.clear();
            for (const int length : {9'999, 10'000, 10'001}) {
                m_log.append(QLatin1String(start) + QString(length, QLatin1Char('x')));
                QCOMPARE(m_edit.wordWrapMode() == QTextOption::WrapAnywhere, length > 10'000);
            }
            QCOMPARE(layouts.size(), 3); // one for each line
        }
        QVERIFY(m_edit.viewport()->rect().contains(m_edit.cursorRect()));
        QVERIFY(m_edit.font().fixedPitch() && m_edit.font().styleHint() == QFont::TypeWriter);
        QCOMPARE(int(m_edit.textInteractionFlags()), 3); // to be selected in both ways
        m_log.clear();
        QCOMPARE(m_edit.wordWrapMode(), QTextOption::WrapAtWordBoundaryOrAnywhere);
    }

    void durations()
    {
        QString texts;
        for (const int seconds : {0, 59, 60, 61, 3599, 3600, 3661, 5400})
            texts += AcquisitionEstimate::formatDuration(seconds) + QLatin1Char('|');
        QCOMPARE(texts, "n/a|59 s|1 min|1 min 1 s|59 min 59 s|1 h|1 h 1 min|90 min|"_s);
        texts.clear();
        for (const auto &[frames, fps] : {std::pair(90'061'500, 1000), {0, 1}, {1, 0}, {1, 1}})
            texts += AcquisitionEstimate::formatVideoDuration(frames, fps) + QLatin1Char('|');
        QCOMPARE(texts, "25:01:01.500|--|--|00:00:01.000|"_s);
        const QDateTime start(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC);
        const QDateTime end = start.addSecs(-1);
        for (const auto &[from, to, cadence, fps] : {std::tuple(start, end, 60, 25),
                                                     {end, start, 0, 25},
                                                     {end, start, 60, 0},
                                                     {{}, start, 60, 25},
                                                     {start, {}, 60, 25}})
            QCOMPARE(AcquisitionEstimate::text(from, to, cadence, fps),
                     "Estimated acquisition: invalid interval or parameters"_s);
        QVERIFY(AcquisitionEstimate::text(start, start, 1, 1).contains(" 00:00:01.000 @ 1 fps"_s));
    }

    void newestFilesAtAnyDepth()
    {
        const QTemporaryDir folder;
        create(folder, "shallow.mp4", 11);
        const QString film = create(folder, "b/AIA/roi.MP4", 10);
        create(folder, "a/session.json", 11);
        const QString session = create(folder, "b/session.json", 10);
        QCOMPARE(OutputSearch::newestVideo(folder.path()), film);
        QCOMPARE(OutputSearch::newestSession(folder.path()), QFileInfo(session).path());
        const QString gone = folder.filePath("gone"_s);
        QCOMPARE(OutputSearch::newestSession(gone), QString());
        QCOMPARE(OutputSearch::videoStartFolder(folder.path(), gone), QFileInfo(film).path());
        QCOMPARE(OutputSearch::videoStartFolder(gone, folder.path()), folder.path());
    }

    void licenceIsReadInFull()
    {
        LicenseDialog dialog;
        dialog.show();
        const auto *view = dialog.findChild<QPlainTextEdit *>("licenseText"_s);
        const int lines = view->blockCount();
        QVERIFY(lines > 9 && view->document()->size().height() == lines); // none is broken
        QCOMPARE(dialog.windowTitle() + view->accessibleName(), "Freeware licenseLicence text"_s);
        QVERIFY(!(dialog.windowFlags() & Qt::WindowContextHelpButtonHint));
        QCOMPARE(view->textInteractionFlags(), m_edit.textInteractionFlags());
        QVERIFY(!view->testAttribute(Qt::WA_InputMethodEnabled)); // no keyboard on the screen
        QVERIFY(dialog.findChild<QLabel *>("programLabel"_s)->geometry().bottom() < view->y());
        QVERIFY(view->geometry().bottom() < dialog.findChild<QDialogButtonBox *>()->y());
        const int before = view->height();
        dialog.resize(1, 1);
        const int least = view->height();
        QVERIFY(least == 10 * view->fontMetrics().lineSpacing() && before > 2 * least);
    }

    void frameFillsTheLabelPixelByPixel()
    {
        m_label.setAlignment(Qt::AlignCenter);
        m_label.resize(304, 204);
        m_label.show();
        const QImage frame = stripes(QSize(300, 200) * screenRatio);
        QVERIFY(m_pane.showFrame(frame));
        QCOMPARE(m_label.text(), QString());
        QImage shown = m_label.grab().toImage().convertToFormat(QImage::Format_RGB32);
        shown.setDevicePixelRatio(1.0);
        QCOMPARE(shown.size(), QSize(304, 204) * screenRatio);
        QCOMPARE(shown.copy(QRect(QPoint(3, 3), frame.size())), frame);
    }

    void resizingStartsFromTheWholeFrame()
    {
        m_label.show();
        QVERIFY(m_pane.showFrame(stripes({800, 400})));
        m_label.resize(1, 1);
        QCOMPARE(m_label.pixmap(Qt::ReturnByValue).size(), QSize(2, 1)); // of the screen's pixels
        m_label.resize(404, 404);
        QCOMPARE(m_label.pixmap(Qt::ReturnByValue).size(), QSize(600, 300));
        m_label.resize(804, 404);
        QCOMPARE(m_label.pixmap(Qt::ReturnByValue).size(), QSize(1200, 600));
        QImage larger({8192, 4096}, QImage::Format_RGB32); // than is kept
        QVERIFY(m_pane.showFrame(larger));
        QCOMPARE(m_label.pixmap(Qt::ReturnByValue).size(), QSize(1200, 600));
    }

    void nothingKeepsTheLastFrame()
    {
        QVERIFY(m_pane.showFrame(stripes({40, 40})));
        const qint64 shown = m_label.pixmap(Qt::ReturnByValue).cacheKey();
        QVERIFY(!m_pane.showFrame(QImage()));
        m_pane.rescale(); // to the size that it has
        QCOMPARE(m_label.pixmap(Qt::ReturnByValue).cacheKey(), shown);
        m_pane.clear("Waiting"_s);
        m_label.resize(500, 500);
        QCOMPARE(m_label.text(), "Waiting"_s);
    }

    /// The last, as it changes the application.
    void lookOfTheProgram()
    {
        applyApplicationLook(*qApp);
        QVERIFY(QApplication::testAttribute(Qt::AA_UseHighDpiPixmaps));
        QStyleOptionButton option;
        QPalette &palette = option.palette = QApplication::palette();
        QCOMPARE(palette.color(QPalette::Active, QPalette::Window).name() +
                     palette.color(QPalette::Disabled, QPalette::Text).name(),
                 "#2d2d30#7d7d7d"_s);
        const std::unique_ptr<QStyle> ours = std::make_unique<ApplicationStyle>();
        const std::unique_ptr<QStyle> fusion(QStyleFactory::create("Fusion"_s));
        QCOMPARE(ours->objectName(), "fusion"_s);
        QCOMPARE(ours->styleHint(QStyle::SH_EtchDisabledText), 0);
        const auto drawn = [&option](const auto &by, QStyle::PrimitiveElement element,
                                     const QWidget *widget = nullptr) {
            QImage image(40, 30, QImage::Format_RGB32);
            image.fill(Qt::black);
            QPainter painter(&image);
            option.rect = image.rect();
            by->drawPrimitive(element, &option, &painter, widget);
            return painter.pen() == QPen() ? image : QImage(); // it leaves none behind
        };
        const auto button = QStyle::PE_PanelButtonCommand;
        QCOMPARE(drawn(ours, button), drawn(fusion, button));
        const QImage box = drawn(ours, QStyle::PE_IndicatorCheckBox);
        palette.setColor(QPalette::Window, QColor(185, 185, 190)); // its outline's origin
        QCOMPARE(box, drawn(fusion, QStyle::PE_IndicatorCheckBox));

        const QImage plain = drawn(fusion, QStyle::PE_Frame);
        QImage focused = plain;
        QPainter painter(&focused);
        painter.setPen(palette.color(QPalette::Highlight).lighter(125));
        painter.drawRect(0, 0, 39, 29);
        painter.end();
        QWidget window;
        QLineEdit edit(&window);
        m_tree->setParent(&window);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QCOMPARE(drawn(ours, QStyle::PE_Frame, m_tree.get()), plain);
        m_tree->setFocus();
        QCOMPARE(drawn(ours, QStyle::PE_Frame, m_tree.get()), focused);
        QCOMPARE(drawn(ours, QStyle::PE_Frame, &edit), plain);
        m_tree->clearFocus();
        QCOMPARE(drawn(ours, QStyle::PE_Frame, m_tree.get()), plain);
        m_tree->setFocusProxy(&edit);
        edit.setFocus();
        QCOMPARE(drawn(ours, QStyle::PE_Frame, m_tree.get()), focused);
        m_tree->setParent(nullptr);
    }

private:
    QTreeWidgetItem *item(const char *text) const
    {
        return m_tree->findItems(QLatin1String(text), Qt::MatchExactly | Qt::MatchRecursive)
            .value(0);
    }

    QVector<int> tickedIds() const
    {
        QVector<int> ids;
        const QVector<DataSource> sources = CatalogTree::tickedSources(m_tree.get());
        for (const DataSource &source : sources)
            ids.append(source.sourceId);
        return ids;
    }

    void fill(const QByteArray &json)
    {
        CatalogTree::fill(m_tree.get(), QJsonDocument::fromJson(json).object(), &m_selection);
    }

    std::unique_ptr<QTreeWidget> m_tree;
    CatalogTree::Selection m_selection;
    QTextEdit m_edit;
    QDockWidget m_dock{"Log"_s};
    LogView m_log{&m_edit, &m_dock};
    QLabel m_label;
    PreviewPane m_pane{&m_label};
};

int main(int argc, char *argv[])
{
    qputenv("QT_SCALE_FACTOR", QByteArray::number(screenRatio));
    QApplication application(argc, argv);
    TestWindowParts test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_windowparts.moc"
