#include "imaging/frameannotation.h"
#include "roi/roisession.h"
#include "roi/roiset.h"
#include "tests/acquisition/acquisitionroad.h"
#include "tests/support/literals.h"
#include "tests/ui/windowfixture.h"

#include <QAction>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTextBrowser>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QtTest>

#include <array>

using Simulator::ArchiveSource;
using WindowFixture::part;

namespace {

constexpr int widthPx = 256;
constexpr const char *geometryKeys[] = {"scale", "scaleCorrection", "width",    "height",
                                        "rsun",  "refPixelX",       "refPixelY"};

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
        {"widthSpin", "acquisition/imageWidth", widthPx},
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

/// An image every @p spacingSeconds, of a shape and a scale that no other datasource has.
ArchiveSource source(const DataSource &named, int spacingSeconds,
                     const char *start = "2010-06-02 00:00:00")
{
    ArchiveSource made = AcquisitionRoad::regular(named, start, spacingSeconds);
    made.widthPx = 4096 - 32 * spacingSeconds / 10;
    made.heightPx = made.widthPx * 3 / 4;
    made.rsunPx = 600 + 3 * spacingSeconds;
    made.refPixelX = made.widthPx / 2.0 + 20;
    made.refPixelY = made.heightPx / 2.0 - 30;
    return made;
}

std::shared_ptr<const Simulator::Archive> archive()
{
    return std::make_shared<const Simulator::Archive>(QVector<ArchiveSource>{
        source({10, "AIA 171"_s, "SDO/AIA/171"_s}, 400),               // asked too often
        source({19, "HMI <b>Mag</b>"_s, "SDO/HMI/magnetogram"_s}, 45), // not ticked
        source({1, "EIT 195"_s, "SOHO/EIT/195"_s}, 30),                // its probe fails
        source({4, "LASCO C2"_s, "SOHO/LASCO/C2/white-light"_s}, 50),  // at times too far off
        source({2003, "GOES-R SUVI 195"_s, "GOES/SUVI/195"_s}, 240, "2010-06-02 00:00:41")});
}

QString contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll())
                                          : "cannot open "_s + path;
}

/// What a program prints; its options have no blanks within, its last argument may have some.
QByteArray outputOf(const QString &command, const QString &last)
{
    QStringList words = command.split(QLatin1Char(' '));
    QProcess process;
    process.start(words.takeFirst(), words << last);
    process.waitForFinished();
    return process.readAllStandardOutput();
}

/// Width, height, frames per second and number of frames of a film, as in "96,160,4/1,5".
QString shapeOf(const QString &film)
{
    return QString::fromLatin1(outputOf("ffprobe -v error -count_frames -of csv=p=0 -show_entries "
                                        "stream=width,height,r_frame_rate,nb_read_frames"_s,
                                        film)
                                   .trimmed());
}

/// How far two pictures are apart at the worst place, 0 to 255. What an encoder does to single
/// pixels evens out over four of them; a digit that differs does not.
int difference(const QImage &one, const QImage &other)
{
    const auto coarse = [](const QImage &image) {
        return image.scaled(image.size() / 2, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    const QImage a = coarse(one);
    const QImage b = coarse(other);
    int worst = a.size() == b.size() ? 0 : 255;
    for (int i = 0; worst < 255 && i < a.width() * a.height(); ++i) {
        const QPoint pixel(i % a.width(), i / a.width());
        worst = qMax(worst, qAbs(qGray(a.pixel(pixel)) - qGray(b.pixel(pixel))));
    }
    return worst;
}

/// A request as the ledger has to have it.
struct Row
{
    QString nickname;
    QDateTime requestedUtc;
    QDateTime actualUtc;
    QString file;       ///< empty without a frame
    QJsonObject answer; ///< as the service gives it

    double number(const char *key) const { return answer[QLatin1String(key)].toDouble(); }
    double kmPerPixel() const { return 695700 / number("rsun") * (number("width") / widthPx); }
};

} // namespace

/// From a tick in the window to a pixel of a region's film, value by value.
class TestWholeRun : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        WindowFixture::reset();
        QVERIFY(m_server.start());
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
        m_session = heard.sessionDirectory;
        QCOMPARE(m_session, m_output.path() + "/20240501_060007__20240501_061000"_s);
        const QDateTime completed = QDateTime::fromString(completedUtc(), Qt::ISODate);
        QVERIFY(before <= completed && completed <= QDateTime::currentDateTimeUtc());

        readExpectedRows();
        compare(heard.events.join(QLatin1Char('\n')), "events.txt");
        compare(contentOf(m_journal), "calls.txt");
        compare(contentOf(sessionFile("manifest.csv"_s)), "manifest.csv");
        compare(contentOf(sessionFile("session.json"_s)), "session.json");
        QTRY_VERIFY(part<QLabel>(window, "previewMeta")->text().contains("06:09:15"_s));
        compare(textOf(window), "window.txt");
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
        const QVector<Row> rows = framesIn(QString());
        for (const Row &row : rows) {
            const QByteArray served = ask("/downloadImage/?type=png&width=%1&id=%2"_s.arg(
                QString::number(widthPx), row.answer["id"_s].toString()));
            QFile original(sessionFile(row.file));
            QVERIFY(original.open(QIODevice::ReadOnly));
            QCOMPARE(original.readAll(), served);
            const QImage copy(
                sessionFile(QString(row.file).replace(QLatin1Char('/'), "/video_frames/"_s)));
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
        const auto session = RoiSession::load(m_session);
        QVERIFY(session && session->sources.size() == 4);
        QCOMPARE(session->startUtc, sixOClock(7));
        for (const RoiSource &source : session->sources) {
            const QVector<Row> rows = framesIn(source.archiveName);
            QCOMPARE(source.frames.size(), rows.size());
            for (int i = 0; i < rows.size(); ++i) {
                QCOMPARE(source.nickname, rows[i].nickname);
                QCOMPARE(source.frames[i].file, sessionFile(rows[i].file));
                QCOMPARE(source.frames[i].actualUtc, rows[i].actualUtc);
                for (const char *key : geometryKeys)
                    QCOMPARE(source.frames[i].metadata[QLatin1String(key)].toDouble(),
                             rows[i].number(key));
            }
            QCOMPARE(shapeOf(source.folder + QLatin1Char('/') + source.archiveName + ".mp4"_s),
                     QString::asprintf("256,192,7/1,%d", rows.size()));
        }
    }

    /// One scale is not in the ledger and has to be asked for.
    void regionFilmsShowTheSession()
    {
        QFile manifest(sessionFile("manifest.csv"_s));
        QByteArray rows = contentOf(manifest.fileName()).toUtf8();
        QCOMPARE(rows.count(",1320,"), 3); // the solar radius in SUVI's pixels
        QVERIFY(manifest.open(QIODevice::WriteOnly) &&
                manifest.write(rows.replace(",1320,", ",,")) == rows.size());
        manifest.close();
        const QRectF pixels(64 / 256.0, 24 / 192.0, 160 / 256.0, 96 / 192.0);
        QVERIFY(RoiSet::save({{"Flare / west"_s, pixels, true, 90}, {"b"_s, pixels, false, 0}},
                             m_session));
        QVERIFY(QFile::remove(m_journal));

        const MainWindow window;
        const WindowFixture::BoxCloser boxes;
        QTimer::singleShot(0, this, &TestWholeRun::filmRegions);
        part<QAction>(window, "actionCreateRoiVideo")->trigger();
        QCOMPARE(boxes.shown.size(), 2);
        compare(contentOf(m_journal), "regioncalls.txt");

        for (const char *source : {"GOES-R_SUVI_195", "AIA_171", "EIT_195", "LASCO_C2"})
            expectFilm(QLatin1String(source), "01_Flare_west", "96,160,4/1", 90, true);
        expectFilm("EIT_195"_s, "02_b", "160,96,5/1", 0, false);
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
            const QString session = finished.first().at(1).toString() + QLatin1Char('/');
            const QString stored = contentOf(session + "session.json"_s);
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

    /// What the service answers when it is asked by other means than the program's.
    QByteArray ask(const QString &question) const
    {
        return outputOf("curl -sS"_s, m_server.baseUrl() + question);
    }

    static QString expected(const char *name)
    {
        return contentOf(QFINDTESTDATA("wholerun/"_s + QLatin1String(name)));
    }

    void readExpectedRows()
    {
        const QStringList lines =
            expected("manifest.csv").remove(QLatin1Char('"')).split(QLatin1Char('\n'));
        for (int i = 1; i + 1 < lines.size(); ++i) {
            const QStringList fields = lines.at(i).split(QLatin1Char(','));
            const QByteArray answer =
                ask("/getClosestImage/?date=%1&sourceId=%2"_s.arg(fields.at(3), fields.at(0)));
            m_rows.append({fields.at(1), QDateTime::fromString(fields.at(3), Qt::ISODate),
                           QDateTime::fromString(fields.at(4), Qt::ISODate), fields.at(8),
                           QJsonDocument::fromJson(answer).object()});
        }
    }

    /// The rows with a frame in a folder.
    QVector<Row> framesIn(const QString &folder) const
    {
        QVector<Row> rows;
        std::copy_if(m_rows.cbegin(), m_rows.cend(), std::back_inserter(rows), [&](const Row &row) {
            return !row.file.isEmpty() && row.file.startsWith(folder);
        });
        return rows;
    }

    QString sessionFile(const QString &name) const { return m_session + QLatin1Char('/') + name; }

    QString completedUtc() const
    {
        const QString session = contentOf(sessionFile("session.json"_s));
        return session.section("\"completedUtc\": \""_s, 1).section(QLatin1Char('"'), 0, 0);
    }

    /// @p text with names in the place of what differs from run to run.
    QString named(QString text) const
    {
        static const QRegularExpression chatter(
            "(?<=\\.mp4\n)(?!Video|FFMPEG).*?(?=Video completed|FFMPEG ERROR)"_s,
            QRegularExpression::DotMatchesEverythingOption);
        text.remove(chatter)
            .replace(m_session, "SESSION"_s)
            .replace(m_output.path(), "OUTPUT"_s)
            .replace(TestFolder::path({}), "APPLICATION"_s)
            .replace(m_server.baseUrl(), "API"_s)
            .replace(completedUtc(), "NOW"_s);
        for (const Row &row : m_rows) {
            QStringList geometry;
            for (const char *key : geometryKeys)
                geometry += QString::number(row.number(key), 'g', 15);
            text.replace(geometry.join(QLatin1Char(',')), "geometry of "_s + row.nickname);
            text.replace(row.answer["id"_s].toString(),
                         row.nickname + row.actualUtc.toString("@HH:mm:ss"_s));
        }
        return text;
    }

    void compare(const QString &text, const char *name) const
    {
        const QStringList found = named(text).split(QLatin1Char('\n'));
        const QStringList lines = expected(name).split(QLatin1Char('\n'));
        for (int i = 0; i < qMin(found.size(), lines.size()); ++i)
            QCOMPARE(found.at(i), lines.at(i));
        QCOMPARE(found.size(), lines.size());
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

    /// With a scale, and the introduction: the whole frame squeezed, then the region. Or with a
    /// stamp and a label.
    void expectFilm(const QString &source, const char *region, const char *shape, int rotation,
                    bool scale) const
    {
        QVector<QImage> pictures;
        const QVector<Row> rows = framesIn(source);
        for (const Row &row : rows) {
            const auto picture = [&](const QImage &upright, double kmPerPixel) {
                QImage turned = upright.transformed(QTransform().rotate(-rotation));
                drawFrameAnnotations(turned, row.actualUtc, row.nickname, !scale, !scale, scale,
                                     kmPerPixel);
                return turned;
            };
            const QImage frame =
                QImage(sessionFile(row.file)).convertToFormat(QImage::Format_RGB32);
            const QImage cut = picture(frame.copy(64, 24, 160, 96), row.kmPerPixel());
            if (scale && pictures.isEmpty()) {
                const QImage whole =
                    frame.scaled(160, 96, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
                pictures = {picture(whole, row.kmPerPixel() * 192 / 96), cut};
            }
            pictures += cut;
        }
        const QString film = sessionFile("%1_20240501_060007/%1_20240501_060007__ROI_%2.mp4"_s.arg(
            source, QLatin1String(region)));
        QCOMPARE(shapeOf(film), "%1,%2"_s.arg(QLatin1String(shape)).arg(pictures.size()));
        const QString strip = m_output.filePath("strip.png"_s); // one below the other
        outputOf("ffmpeg -v error -y -i %1 -vf tile=1x%2"_s.arg(film).arg(pictures.size()), strip);
        const QSize size = pictures.constFirst().size();
        for (int i = 0; i < pictures.size(); ++i) {
            const QRect place(QPoint(0, i * size.height()), size);
            const int found = difference(QImage(strip).copy(place), pictures.at(i));
            QVERIFY2(found < 16, // a stamp that is a second off makes 25
                     qPrintable("%1, picture %2: %3"_s.arg(film).arg(i).arg(found)));
        }
    }

    Simulator::Server m_server{archive()};
    QTemporaryDir m_output;
    QString m_journal = m_output.filePath("calls"_s);
    QString m_session;
    QVector<Row> m_rows;
};

QTEST_MAIN(TestWholeRun)
#include "tst_wholerun.moc"
