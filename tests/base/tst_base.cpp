#include "base/desktopactions.h"
#include "base/filenames.h"
#include "base/helperprograms.h"
#include "base/jsonfile.h"
#include "base/loglineclass.h"
#include "base/plainmessagebox.h"
#include "base/regularfile.h"
#include "base/runtimeconfig.h"
#include "base/utctext.h"
#include "tests/support/literals.h"
#include "tests/support/testfolder.h"

#include <QAbstractButton>
#include <QLabel>
#include <QScreen>
#include <QScrollArea>
#include <QtTest>

using LogLineClass::LineClass;

/// The settings of the machine, JSON files, times, names and the first words of log lines.
class TestBase final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("LC_ALL", "ar_EG.UTF-8"); // a language with digits of its own
        qputenv("TZ", "Europe/Berlin");   // local time is never UTC here
        tzset();
    }

    void init()
    {
        QDir(TestFolder::path("sys"_s)).removeRecursively();
        QCOMPARE(JsonFile::save(m_path, m_old), JsonFile::SaveResult::Saved);
    }

    void firstStart()
    {
        const QString curl = TestFolder::path("bin/curl"_s);
        QCOMPARE(RuntimeConfig::curlPath(), curl); // a missing file reads as the defaults
        QCOMPARE(RuntimeConfig::preflightProbeSeconds(), 7200);
        QVERIFY(RuntimeConfig::allowInsecureFallback());
        QVERIFY(!QFile::exists(RuntimeConfig::configFilePath()));
        QDir(TestFolder::path("out"_s)).removeRecursively();
        RuntimeConfig::ensureRuntimeConfig();
        QVERIFY(QDir(TestFolder::path("out"_s)).exists());
        for (const QString &program : {curl, RuntimeConfig::ffmpegPath()}) {
            QFile::remove(program);
            HelperPrograms::linkMissing();
            QVERIFY(QFileInfo(program).isExecutable());
        }
        const QSettings written(RuntimeConfig::configFilePath(), QSettings::IniFormat);
        const QSettings shipped(QFINDTESTDATA("../../packaging/orvik.ini"), QSettings::IniFormat);
        const QStringList keys = written.allKeys();
        QCOMPARE(keys.size(), 13);
        QCOMPARE(shipped.allKeys(), keys);
        for (const QString &key : keys)
            QCOMPARE(shipped.value(key).toString(), written.value(key).toString());
    }

    void valuesOfTheUserStay()
    {
        RuntimeConfig::ensureRuntimeConfig();
        QFile file(RuntimeConfig::configFilePath());
        QVERIFY(file.open(QIODevice::WriteOnly) &&
                file.write("[network]\nconnectTimeoutSeconds=5\napiBase=\nmaxTransferSeconds=long\n"
                           "[paths]\noutput=/data/Sch\u00f6ne Sonne, a\n[video]\nfps=50\n") > 0);
        file.close();
        RuntimeConfig::ensureRuntimeConfig();
        QCOMPARE(RuntimeConfig::connectTimeoutSeconds(), 5);
        QCOMPARE(RuntimeConfig::apiBase(), QString()); // empty is a value too
        QCOMPARE(RuntimeConfig::maxTransferSeconds(), 0);
        QCOMPARE(RuntimeConfig::outputRoot(), "/data/Sch\u00f6ne Sonne, a"_s);
        QCOMPARE(RuntimeConfig::preset("video/fps"_s).toInt(), 50);
        QVERIFY(!RuntimeConfig::preset("video/crf"_s).isValid());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        QVERIFY(text.count('=') == 14 && text.contains("/data/Sch\u00f6ne Sonne"));
    }

    void boundsOfNumbers()
    {
        for (const auto &[given, parallel, probe, tolerance] :
             {std::array{-1, 1, 300, 0}, std::array{5, 5, 300, 5}, std::array{301, 6, 301, 301},
              std::array{86401, 6, 86400, 86401}}) {
            for (const char *key :
                 {"network/preflightParallelRequests", "timing/preflightProbeSeconds",
                  "timing/aiaMaxTimeErrorSeconds", "timing/suviMaxTimeErrorSeconds"})
                TestFolder::setKey(QLatin1String(key), given); // takes effect at once
            QCOMPARE(RuntimeConfig::preflightParallelRequests(), parallel);
            QCOMPARE(RuntimeConfig::preflightProbeSeconds(), probe);
            QCOMPARE(RuntimeConfig::aiaMaxTimeErrorSeconds(), tolerance);
            QCOMPARE(RuntimeConfig::suviMaxTimeErrorSeconds(), tolerance);
        }
    }

    void addressesAndPaths()
    {
        TestFolder::setKey("network/apiBase"_s, "http://[::1]:80/v2///"_s);
        QCOMPARE(RuntimeConfig::apiBase(), "http://[::1]:80/v2"_s);
        TestFolder::setKey("paths/curl"_s, "/opt//x/./../curl"_s);
        QCOMPARE(RuntimeConfig::curlPath(), "/opt/curl"_s);

        const QString workingDirectory = QDir::currentPath();
        QVERIFY(QDir::setCurrent(QDir::rootPath()));
        TestFolder::setKey("paths/curl"_s, "tools/curl"_s);
        QCOMPARE(RuntimeConfig::curlPath(), TestFolder::path("tools/curl"_s));
        QVERIFY(QDir::setCurrent(workingDirectory));
    }

    void diskFullHalfWayKeepsTheOldFile()
    {
        for (const int length : {100'000, 2'000}) { // seen when written, when the buffer is flushed
            const QJsonObject large{{"text"_s, QString(length, QLatin1Char('x'))}};
            TestFolder::leaveRoom(1000);
            const JsonFile::SaveResult result = JsonFile::save(m_path, large);
            TestFolder::leaveRoom();
            QCOMPARE(result, JsonFile::SaveResult::CannotCommit);
            QVERIFY(JsonFile::load(m_path) == m_old);
            QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files).size(), 1); // nothing temporary
        }
    }

    void failureTellsItsReason()
    {
        QString errorText;
        QVERIFY(QFile::resize(m_path, 5)); // cut off
        QVERIFY(!JsonFile::load(m_path, &errorText));
        QCOMPARE(errorText, "unterminated object"_s);
        for (const auto &[sign, limit] :
             {std::pair('{', 100'000), std::pair('[', 100'000), std::pair(',', 10'000'000)}) {
            for (const int more : {0, 1}) {
                QVERIFY(!JsonFile::parse(' ' + QByteArray(limit + more, sign), &errorText));
                QCOMPARE(errorText == "too many values"_s, more > 0);
            }
        }
        const QString nowhere = m_folder.filePath("no folder/x.json"_s);
        QCOMPARE(JsonFile::save(nowhere, {}), JsonFile::SaveResult::CannotOpen);
        QVERIFY(!JsonFile::load(nowhere, &errorText) && !JsonFile::load(nowhere));
        QCOMPARE(errorText, "No such file or directory"_s);
        QVERIFY(QFile::resize(m_path, 2 << 20));
        QCOMPARE(RegularFile::read(m_path, 2 << 20, &errorText)->size(), 2 << 20);
        QVERIFY(!RegularFile::read(m_path, (2 << 20) - 1, &errorText) &&
                errorText == "larger than 1 MB"_s);
    }

    /// The platform of the tests opens no file for anyone.
    void boxesSayWhatCannotBeOpened()
    {
        QString said;
        QTimer watch;
        connect(&watch, &QTimer::timeout, this, [&said] {
            const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            said += box ? box->windowTitle() + QLatin1Char(' ') + box->text() + QLatin1Char('|')
                        : QString();
            const auto *scroll = box ? box->findChild<QScrollArea *>() : nullptr;
            if (scroll && qobject_cast<QLabel *>(scroll->widget())->wordWrap() &&
                scroll->frameShape() == QFrame::NoFrame && scroll->widgetResizable() &&
                scroll->minimumSize() == scroll->screen()->availableSize() / 2)
                said += scroll->accessibleName();
            if (box)
                box->buttons().constFirst()->click();
        });
        watch.start(0);
        const QString page = TestFolder::path("doc/help.html"_s);
        QFile::remove(page);
        QVERIFY(!DesktopActions::playVideo(nullptr, "/no.mp4"_s));
        QVERIFY(!DesktopActions::playVideo(nullptr, m_path));
        DesktopActions::showHelp(nullptr);
        QVERIFY(QDir().mkpath(TestFolder::path("doc"_s)) && QFile(page).open(QIODevice::WriteOnly));
        DesktopActions::showHelp(nullptr);
        const QString lines = "<b>\n"_s.repeated(200);
        PlainMessageBox::show(nullptr, QMessageBox::Information, "Many"_s, lines);
        QCOMPARE(said, "Play video Video file not found:\n/no.mp4|Play video The system video "
                       "player could not open:\n%1|Orvik help Help file not found:\n%2|"
                       "Orvik help The system browser could not open:\n%2|Many %3|Many"_s.arg(
                           m_path, page, lines));
    }

    void timeFromText()
    {
        const QString noon = "2024-05-01T12:00:07Z"_s;
        for (const char *text : {" \t2024-05-01T12:00:07Z\r\n", "2024-05-01T12:00:07.999Z",
                                 "2024-05-01T14:00:07+02:00", "2024-05-01T14:00:07"})
            QCOMPARE(UtcText::toText(UtcText::fromText(QLatin1String(text))), noon);
        for (const char *text : {"  ", "2024-02-30T12:00:07Z"}) // there is no such day
            QVERIFY(!UtcText::fromText(QLatin1String(text)).isValid());
    }

    void timeToText()
    {
        const QDateTime time(QDate(2024, 1, 1), QTime(0, 30, 9, 999), Qt::OffsetFromUTC, 3600);
        QCOMPARE(UtcText::toText(time), "2023-12-31T23:30:09Z"_s);
        QCOMPARE(UtcText::toText({}), QString());
        QCOMPARE(UtcText::toOverlayText(time), "2023-12-31 23:30:09 UTC"_s);
        QCOMPARE(UtcText::toDisplayText(time), "2023-12-31 23:30:09"_s);
        QCOMPARE(FileNames::datasourceFolder(QString(), time), "source_20231231_233009"_s);
        QCOMPARE(UtcText::signedDelta(0), "+0"_s);
        QCOMPARE(UtcText::signedDelta(-7), "-7"_s);
    }

    void longNamesFitTheFileSystem()
    {
        const QDateTime time(QDate(2024, 1, 1), QTime(0, 0), Qt::UTC);
        const QString stamp = "_20240101_000000"_s;
        const QString letters(300, QLatin1Char('x'));
        QCOMPARE(FileNames::datasourceFolder(letters.left(235), time), letters.left(235) + stamp);
        QCOMPARE(FileNames::datasourceFolder(letters, time), letters.left(235) + stamp);
        QCOMPARE(FileNames::datasourceFolder(letters, time, "_7"_s),
                 letters.left(233) + stamp + "_7"_s);
        const QString sun = QString::fromUtf8("\xf0\x9f\x8c\x9e"); // four bytes, two QChars
        QCOMPARE(FileNames::shortened(sun.repeated(3), 11), sun.repeated(2));
    }

    void namesBecomeFileNames()
    {
        for (const auto &[name, expected] :
             {std::pair(" XRT Al_poly/Open ", "XRT_Al_poly_Open"), std::pair("../..", "_"),
              std::pair("a__ +_b--%1", "a_b--_1"), std::pair(" \t", "ROI"),
              std::pair("H\u03b1 Sch\u00f6n \u00bd \u65e5", "H\u03b1_Sch\u00f6n_\u00bd_\u65e5")})
            QCOMPARE(FileNames::roiPart(QString::fromUtf8(name)), QString::fromUtf8(expected));
    }

    void firstFittingRuleDecides()
    {
        const QVector<std::pair<LineClass, QVector<const char *>>> lines = {
            {LineClass::Error,
             {"  ERROR: unavailable", "ffmpeg error (AIA 171)", "REJECT x DOWNLOAD_ERROR",
              "AIA 171 lookup_error", "ffmpeg: Invalid data found"}},
            {LineClass::Warning,
             {"warning: x failed", "rejectxDOWNLOAD_ERROR", "DUPLICATE AIA 171", "Suspicious frame",
              "VIDEO SKIPPED AIA 171", "probe unavailable: failed"}},
            {LineClass::Success,
             {"OK AIA 171", "Video completed: x.mp4", "  session completed. ",
              "Helioviewer datasource catalog updated.", "ROI definitions saved: x"}},
            {LineClass::Info, {"curl: (28) Operation timed out", "FFMPEG: frame=12"}},
            {LineClass::Plain, {"SKIPPED", " OK ", "Session completed. 3 videos", ""}}};
        for (const auto &[lineClass, texts] : lines) {
            for (const char *text : texts)
                QVERIFY2(LogLineClass::classify(QLatin1String(text)) == lineClass, text);
        }
    }

private:
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath("session.json"_s);
    QJsonObject m_old{{"Sch\u00f6n"_s, 9007199254740991.0}};
};

QTEST_MAIN(TestBase)
#include "tst_base.moc"
