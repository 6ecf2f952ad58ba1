#include "imaging/frameannotation.h"
#include "roi/roisession.h"
#include "roi/roiset.h"
#include "tests/acquisition/acquisitionfixture.h"
#include "tests/support/literals.h"
#include "tests/ui/wholesession.h"
#include "tests/ui/windowfixture.h"
#include "ui/statusline.h"

#include <QAction>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QStatusBar>
#include <QTextBrowser>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QtTest>

#include <array>

using WindowFixture::part;

namespace {

QDateTime sixOClock(int seconds)
{
    return QDateTime(QDate(2024, 5, 1), QTime(6, 0), Qt::UTC).addSecs(seconds);
}

/// What is chosen in the window and where it is stored. None is a default but the last three, and
/// no number is another's.
struct Choice
{
    const char *widget;
    const char *key;
    QVariant value;
};

const std::array<Choice, 12> &choices()
{
    static const std::array<Choice, 12> all = {{
        {"startEdit", "acquisition/startUtc", sixOClock(7)},
        {"endEdit", "acquisition/endUtc", sixOClock(600)},
        {"cadenceSpin", "acquisition/cadenceSeconds", 137},
        {"timeErrorSpin", "acquisition/maxTimeErrorSeconds", 13},
        {"widthSpin", "acquisition/imageWidth", WholeSession::widthPx},
        {"fpsSpin", "video/fps", 7},
        {"crfSpin", "video/crf", 29},
        {"sourceOverlayCheck", "video/sourceOverlay", false},
        {"scaleOverlayCheck", "video/scaleOverlay", true},
        {"keepFramesCheck", "acquisition/keepFrames", true},
        {"createVideosCheck", "video/create", true},
        {"sourceTimingProfilesCheck", "acquisition/useSourceTimingProfiles", true},
    }};
    return all;
}
constexpr std::size_t unlikeDefault = 9;

QVariant valueOf(const QWidget &window, const char *widget)
{
    const auto *found = part<QWidget>(window, widget);
    return found->metaObject()->userProperty().read(found);
}

void choose(const QWidget &window, const char *widget, const QVariant &value)
{
    auto *found = part<QWidget>(window, widget);
    QVERIFY(found->metaObject()->userProperty().write(found, value));
}

} // namespace

/// From a tick in the window to a pixel of a region's film, value by value.
class TestWholeRun final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        WindowFixture::reset();
        QVERIFY(m_server.start());
        m_session.apiBase = m_server.baseUrl();
        m_session.output = m_output.path();
        const QVector<std::pair<const char *, QVariant>> keys = {
            {"paths/output", m_output.path()},        {"network/apiBase", m_server.baseUrl()},
            {"network/connectTimeoutSeconds", 11},    {"network/maxTransferSeconds", 77},
            {"network/preflightParallelRequests", 1}, {"timing/aiaMaxTimeErrorSeconds", 150},
            {"timing/suviMaxTimeErrorSeconds", 95},   {"timing/preflightProbeSeconds", 345}};
        for (const auto &[key, value] : keys)
            TestFolder::setKey(QLatin1String(key), value);
        noteCallsOf("curl", "curl"_s);
        noteCallsOf("ffmpeg", "${PWD##*/}: ffmpeg"_s);
        m_server.addFault({Simulator::Operation::GetJPX, Simulator::FaultKind::Status, 400, 2, 1});
    }

    void sessionIsWhatWasAskedFor()
    {
        MainWindow window;
        SessionEvents heard;
        heard.listenTo(window.findChild<AcquisitionController *>());
        heard.onEvent = [&window](const QString &event) {
            const auto *bar = part<QProgressBar>(window, "progress");
            if (event.startsWith(QLatin1String("[progress] ")))
                QCOMPARE(event.mid(11), QString::asprintf("%d/%d", bar->value(), bar->maximum()));
            if (event.startsWith(QLatin1String("[state] ")))
                QCOMPARE(event.mid(8), part<QLabel>(window, "stateLabel")->text());
        };
        window.show();
        QTRY_VERIFY(WindowFixture::findLeaf(window, "EIT"_s) != nullptr);
        for (std::size_t i = 0; i < choices().size(); ++i) {
            const auto &[widget, key, value] = choices().at(i);
            QCOMPARE(valueOf(window, widget) == value, i >= unlikeDefault);
            choose(window, widget, value);
        }
        for (const char *name : {"LASCO C2", "AIA 171", "GOES-R SUVI 195", "EIT 195"})
            WindowFixture::clickLeaf(window, QLatin1String(name));
        const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
        WindowFixture::clickToolButton(window, "actionStartAcquisition");
        QTRY_COMPARE_WITH_TIMEOUT(heard.events.last(), "[finished] completed"_s, 60'000);
        m_session.directory = heard.sessionDirectory;
        QCOMPARE(m_session.directory, m_output.path() + "/20240501_060007__20240501_061000"_s);
        const QDateTime completed = QDateTime::fromString(m_session.completedUtc(), Qt::ISODate);
        QVERIFY(before <= completed && completed <= QDateTime::currentDateTimeUtc());

        m_session.readRows();
        m_session.compare(heard.events.join(QLatin1Char('\n')), "events.txt");
        m_session.compare(WholeSession::contentOf(m_journal), "calls.txt");
        m_session.compare(WholeSession::contentOf(m_session.file("manifest.csv"_s)),
                          "manifest.csv");
        m_session.compare(WholeSession::contentOf(m_session.file("session.json"_s)),
                          "session.json");
        QTRY_VERIFY(part<QLabel>(window, "previewMeta")->text().contains("06:09:15"_s));
        m_session.compare(textOf(window), "window.txt");
        part<QSpinBox>(window, "cadenceSpin")->stepUp(); // what was found holds no longer
        QVERIFY(!textOf(window).contains("Orvik samples directly every"_s));
    }

    void choicesAreStored()
    {
        const MainWindow window;
        for (const Choice &choice : choices()) {
            QCOMPARE(WindowFixture::userSettings().value(QLatin1String(choice.key)), choice.value);
            QCOMPARE(valueOf(window, choice.widget), choice.value);
        }
        QCOMPARE(WindowFixture::userSettings().value("sources/selectedIds"_s),
                 QStringList({"2003"_s, "10"_s, "1"_s, "4"_s}));
        QCOMPARE(WindowFixture::userSettings().value("sources/currentId"_s), 1);
    }

    void framesAreAsServedAndAnnotated()
    {
        const QVector<WholeSession::Row> rows = m_session.framesIn(QString());
        for (const WholeSession::Row &row : rows) {
            const QByteArray served = m_session.ask("/downloadImage/?type=png&width=%1&id=%2"_s.arg(
                QString::number(WholeSession::widthPx), row.answer["id"_s].toString()));
            QFile original(m_session.file(row.file));
            QVERIFY(original.open(QIODevice::ReadOnly));
            QCOMPARE(original.readAll(), served);
            const QImage copy(
                m_session.file(QString(row.file).replace(QLatin1Char('/'), "/video_frames/"_s)));
            const auto annotated = [&](const QDateTime &utc) {
                QImage image = QImage::fromData(served).convertToFormat(copy.format());
                drawFrameAnnotations(image, utc, row.nickname, true, false, true, row.kmPerPixel());
                return image;
            };
            QCOMPARE(copy, annotated(row.actualUtc));
            QCOMPARE(copy == annotated(row.requestedUtc), row.actualUtc == row.requestedUtc);
        }
    }

    void storedSessionIsReadBack()
    {
        const auto session = RoiSession::load(m_session.directory);
        QVERIFY(session && session->sources.size() == 4);
        QCOMPARE(session->startUtc, sixOClock(7));
        for (const RoiSource &source : session->sources) {
            const QVector<WholeSession::Row> rows = m_session.framesIn(source.archiveName);
            QCOMPARE(source.frames.size(), rows.size());
            for (int i = 0; i < rows.size(); ++i) {
                QCOMPARE(source.nickname, rows[i].nickname);
                QCOMPARE(source.frames[i].file, m_session.file(rows[i].file));
                QCOMPARE(source.frames[i].actualUtc, rows[i].actualUtc);
                for (const char *key : WholeSession::geometryKeys)
                    QCOMPARE(source.frames[i].metadata[QLatin1String(key)].toDouble(),
                             rows[i].number(key));
            }
            QCOMPARE(WholeSession::shapeOf(source.folder + QLatin1Char('/') + source.archiveName +
                                           ".mp4"_s),
                     QString::asprintf("256,192,7/1,%d", rows.size()));
        }
    }

    /// One scale is not in the ledger and has to be asked for.
    void regionFilmsShowTheSession()
    {
        QFile manifest(m_session.file("manifest.csv"_s));
        QByteArray rows = WholeSession::contentOf(manifest.fileName()).toUtf8();
        QCOMPARE(rows.count(",1320,"), 3); // the solar radius in SUVI's pixels
        QVERIFY(manifest.open(QIODevice::WriteOnly) &&
                manifest.write(rows.replace(",1320,", ",,")) == rows.size());
        manifest.close();
        const QRectF pixels(64 / 256.0, 24 / 192.0, 160 / 256.0, 96 / 192.0);
        QVERIFY(RoiSet::save({{"Flare / west"_s, pixels, true, 90}, {"b"_s, pixels, false, 0}},
                             m_session.directory));
        QVERIFY(QFile::remove(m_journal));

        const MainWindow window;
        const WindowFixture::BoxCloser boxes;
        QTimer::singleShot(0, this, &TestWholeRun::filmRegions);
        part<QAction>(window, "actionCreateRoiVideo")->trigger();
        QCOMPARE(boxes.shown.size(), 2);
        m_session.compare(WholeSession::contentOf(m_journal), "regioncalls.txt");

        for (const char *source : {"GOES-R_SUVI_195", "AIA_171", "EIT_195", "LASCO_C2"})
            m_session.expectFilm(QLatin1String(source), "01_Flare_west", "96,160,4/1", 90, true);
        m_session.expectFilm("EIT_195"_s, "02_b", "160,96,5/1", 0, false);
    }

    /// With the first run there are four, in which no two of five choices are always alike.
    void eachChoiceOfItsOwn()
    {
        const QString folder = "AIA_171_20240501_060007"_s;
        using Texts = std::array<const char *, 3>;
        for (const auto &[off, flags, files] :
             {Texts{"keepFramesCheck", "10011", ".mp4"},
              Texts{"createVideosCheck", "10101", "frame_000000.png video_frames"},
              Texts{"sourceTimingProfilesCheck", "10110", ".mp4 frame_000000.png video_frames"}}) {
            MainWindow window;
            window.show();
            part<QPushButton>(window, "clearButton")->click();
            WindowFixture::clickLeaf(window, "AIA 171"_s);
            choose(window, "endEdit", sixOClock(7));
            choose(window, "scaleOverlayCheck", false);
            choose(window, "sourceOverlayCheck", true);
            for (const char *widget :
                 {"keepFramesCheck", "createVideosCheck", "sourceTimingProfilesCheck"})
                choose(window, widget, qstrcmp(widget, off) != 0);
            QSignalSpy finished(window.findChild<AcquisitionController *>(),
                                &AcquisitionController::finished);
            WindowFixture::clickToolButton(window, "actionStartAcquisition");
            QVERIFY(finished.wait(30'000));
            window.findChild<StatusLine *>()->begin(); // says once more how far it came
            QCOMPARE(window.statusBar()->currentMessage(),
                     flags[3] == '1' ? "1 of 1 requests, 1 of 1 films"_s : "1 of 1 requests"_s);
            const QString session = finished.first().at(1).toString() + QLatin1Char('/');
            const QString stored = WholeSession::contentOf(session + "session.json"_s);
            QString described;
            for (const char *key : {"sourceOverlay", "scaleOverlay", "keepFrames", "createVideos",
                                    "useSourceTimingProfiles"})
                described +=
                    QString::number(stored.count("\"%1\": true"_s.arg(QLatin1String(key))));
            QCOMPARE(described, QLatin1String(flags));
            const QDir source(session + folder);
            const QStringList found = source.entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
            QCOMPARE(found.join(QLatin1Char(' ')).remove(folder), QLatin1String(files));
        }
    }

    /// Of what is chosen, found out and not to be had.
    void windowTellsAtOnce()
    {
        WindowFixture::reset();
        WindowFixture::writeCatalog(R"({"SDO": {"171": {"sourceId": 10, "nickname": "AIA 171"},
                                                "x": {"sourceId": 13}}})");
        const QDateTime start(QDate(2000, 1, 1), QTime(0, 0), Qt::UTC); // as the form has it
        for (const char *key : {"acquisition/startUtc", "acquisition/endUtc"})
            WindowFixture::userSettings().setValue(QLatin1String(key), start);
        MainWindow window;
        QVERIFY(QFile::exists(TestFolder::path("sys/orvik.ini"_s)));
        const auto shown = [&window] {
            return part<QLabel>(window, "estimateLabel")->text() +
                   part<QTextBrowser>(window, "catalogInfo")->toPlainText();
        };
        QVERIFY(shown().contains(" 1 frame(s) per datasource  |  video 00:00:00.040 @ 25 fps"_s));
        QVERIFY(shown().contains("Select a datasource on the left."_s));
        window.show();
        QTreeWidgetItem *leaf = WindowFixture::findLeaf(window, "AIA 171"_s);
        const QRect row = leaf->treeWidget()->visualItemRect(leaf);
        QTest::mouseClick(leaf->treeWidget()->viewport(), Qt::LeftButton, {},
                          {row.left() + row.height() / 2, row.center().y()}); // its box
        choose(window, "endEdit", start.addSecs(240));
        choose(window, "fpsSpin", 7);
        QVERIFY(shown().contains(" 5 frame(s) per datasource  |  video 00:00:00.714 @ 7 fps"_s));
        QVERIFY(shown().contains(" -> 2000-01-01 00:04:00 UTC."_s));
        auto *controller = window.findChild<AcquisitionController *>();
        for (const auto &[id, frames] : {std::pair(10, 22), {13, 33}, {99, 44}}) // none is 99
            emit controller->sourceTimingAnalyzed(id, frames, 60, 50, 70);
        QVERIFY(shown().contains("22 probe frames; observed range 50 s - 1 min 10 s."_s));
        QString told;
        for (const char *button : {"clearButton", "aiaButton"}) {
            part<QPushButton>(window, button)->click();
            told += window.statusBar()->currentMessage() + QString::number(leaf->checkState(0));
        }
        leaf->treeWidget()->clear();
        part<QPushButton>(window, "aiaButton")->click();
        QCOMPARE(told + window.statusBar()->currentMessage(),
                 "Ready01 SDO/AIA bands ticked.2The catalog has no SDO/AIA band. Refresh it."_s);
        emit controller->progressChanged(0, 0);
        emit controller->previewReady("x"_s, "/none.png"_s, start, start, 0);
        QCOMPARE(part<QProgressBar>(window, "progress")->maximum(), 1);
        QTRY_VERIFY(WindowFixture::logText(window).endsWith("preview image /none.png\n"_s));
    }

private:
    /// What the window shows, of each datasource one after the other.
    static QString textOf(const MainWindow &window)
    {
        const QRegularExpression clock("\\[\\d\\d:\\d\\d:\\d\\d\\] (curl: .*\n)?"_s);
        QString text = WindowFixture::logText(window).remove(clock);
        for (const char *label : {"estimateLabel", "previewMeta", "pathsLabel"})
            text += part<QLabel>(window, label)->text() + QLatin1Char('\n');
        for (QTreeWidgetItemIterator it(part<QTreeWidget>(window, "sourcesTree")); *it; ++it) {
            (*it)->treeWidget()->setCurrentItem(*it);
            text += (*it)->toolTip(0) + QLatin1Char('\n') +
                    part<QTextBrowser>(window, "catalogInfo")->toPlainText() + "\n\n"_s;
        }
        return text;
    }

    /// Puts a script in the place of a program that notes how it is called.
    void noteCallsOf(const char *program, const QString &caller) const
    {
        const QString name = QLatin1String(program);
        const QString commands = "echo \"%1 $*\" >>'%2'\nexec '%3' \"$@\""_s.arg(
            caller, m_journal, TestFolder::path("bin/"_s + name));
        TestFolder::setKey("paths/"_s + name,
                           TestFolder::writeScript("noted-"_s + name, commands.toUtf8()));
    }

    /// In the dialog that has opened: first all datasources, with an introduction, a scale and
    /// nothing else, then another region of one of them, the other way round.
    void filmRegions()
    {
        const QWidget *dialog = QApplication::activeModalWidget();
        const auto film = [dialog](const QString &fields) {
            const QStringList all = fields.split(QLatin1Char(' '));
            for (const QString &field : all)
                choose(*dialog, qPrintable(field.section(QLatin1Char('='), 0, 0)),
                       field.section(QLatin1Char('='), 1));
            part<QPushButton>(*dialog, "generateButton")->click();
        };
        QCOMPARE(valueOf(*dialog, "fpsSpin"), 7); // the session's own, as the next three
        QCOMPARE(valueOf(*dialog, "crfSpin"), 29);
        QCOMPARE(valueOf(*dialog, "sourceOverlayCheck"), false);
        QCOMPARE(valueOf(*dialog, "scaleOverlayCheck"), true);
        film("fpsSpin=4 crfSpin=2 timestampCheck=false introCheck=true "
             "zoomDurationSpin=0.5 allSourcesCheck=true"_s);
        part<QComboBox>(*dialog, "sourceCombo")->setCurrentIndex(2);
        part<QListWidget>(*dialog, "roiList")->item(0)->setCheckState(Qt::Unchecked);
        part<QListWidget>(*dialog, "roiList")->item(1)->setCheckState(Qt::Checked);
        film("fpsSpin=5 crfSpin=3 timestampCheck=true introCheck=false "
             "sourceOverlayCheck=true scaleOverlayCheck=false "
             "allSourcesCheck=false"_s);
        part<QPushButton>(*dialog, "closeButton")->click();
    }

    Simulator::Server m_server{WholeSession::archive()};
    QTemporaryDir m_output;
    QString m_journal = m_output.filePath("calls"_s);
    WholeSession m_session;
};

QTEST_MAIN(TestWholeRun)
#include "tst_wholerun.moc"
