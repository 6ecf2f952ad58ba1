#include "output/filmfile.h"
#include "roi/roisession.h"
#include "tests/acquisition/acquisitionfixture.h"
#include "tests/support/fakeprogram.h"

#include <QDir>
#include <QGuiApplication>
#include <QProcess>
#include <QtTest>

#include <csignal>

namespace {

AcquisitionSettings settings()
{
    return AcquisitionFixture::settings(180,
                                        {AcquisitionFixture::aia(), AcquisitionFixture::suvi()});
}

/// A run in this process, which is killed with its fifth frame.
int runUntilKilled()
{
    AcquisitionController controller;
    int frames = 0;
    QObject::connect(&controller, &AcquisitionController::logMessage, &controller,
                     [&frames](const QString &line) {
                         frames += line.startsWith(QLatin1String("OK ")) ? 1 : 0;
                         if (frames == 5)
                             std::raise(SIGKILL);
                     });
    return controller.start(settings()) ? QCoreApplication::exec() : 1;
}

/**
 * What @p commands print in bash, in @p folder, and at the end their exit code in brackets.
 *
 * They find orvik-session by its name, and $A and $S are the folders of AIA and SUVI.
 */
QString shell(const QString &folder, const QString &commands)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"), QCoreApplication::applicationDirPath() +
                                                   QLatin1Char(':') + qEnvironmentVariable("PATH"));
    environment.insert(QStringLiteral("A"), QStringLiteral("AIA_171_20240501_000000"));
    environment.insert(QStringLiteral("S"), QStringLiteral("GOES-R_SUVI_195_20240501_000000"));
    QProcess bash;
    bash.setProcessEnvironment(environment);
    bash.setWorkingDirectory(folder);
    bash.setProcessChannelMode(QProcess::MergedChannels);
    bash.start(QStringLiteral("bash"),
               {QStringLiteral("-o"), QStringLiteral("pipefail"), QStringLiteral("-c"), commands});
    bash.waitForFinished();
    return QString::fromUtf8(bash.readAll()).replace(folder, QStringLiteral("DIR")) +
           QStringLiteral("[%1]\n").arg(bash.exitCode());
}

} // namespace

/// The program for stored sessions, run as a user runs it.
class TestSessionTool final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const QString program = TestFolder::path(QStringLiteral("orvik-session"));
        QFile::remove(program);
        QVERIFY(QFile::copy(QStringLiteral(ORVIK_SESSION_PROGRAM), program));
        TestFolder::clearKeys();
        m_road = std::make_unique<AcquisitionFixture>();
        QVERIFY(m_road->run(settings()));
    }
    void cleanupTestCase() { m_road.reset(); }

    /// Stands in the texts beside this file: a name, commands, and below "--" what they print.
    void transcripts_data()
    {
        QTest::addColumn<QString>("commands");
        QTest::addColumn<QString>("printed");
        QFile file(QFINDTESTDATA("transcripts.txt"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QStringList cases = QString::fromUtf8(file.readAll()).split(QStringLiteral("== "));
        cases.removeFirst(); // what stands before the first case
        for (const QString &text : std::as_const(cases)) {
            const QString rest = text.section(QLatin1Char('\n'), 1);
            QTest::newRow(qPrintable(text.section(QLatin1Char('\n'), 0, 0)))
                << rest.section(QStringLiteral("--\n"), 0, 0)
                << rest.section(QStringLiteral("--\n"), 1).trimmed();
        }
    }

    void transcripts()
    {
        QFETCH(QString, commands);
        const QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString copy = QStringLiteral("cp -r %1/. .\n").arg(m_road->sessionDirectory);
        QTEST(shell(folder.path(), copy + commands).trimmed(), "printed");
    }

    void killedRunIsRecoveredAndFilmed()
    {
        QProcess run;
        run.start(QCoreApplication::applicationFilePath(), {QStringLiteral("run")});
        QVERIFY(run.waitForFinished() && run.exitStatus() == QProcess::CrashExit);
        const QString session = m_road->sessionDirectory + QStringLiteral("_2");
        // With its last row the session loses a frame that stays in the folder.
        QCOMPARE(
            shell(session, QStringLiteral("truncate -s -150 manifest.csv; orvik-session recover . "
                                          "| head -2; orvik-session verify --decode .")),
            QStringLiteral("the last row of manifest.csv, line 6, is cut off.\n"
                           "session.json written: 2 datasources, 4 frames\n"
                           "the last row of manifest.csv, line 6, is cut off.\n"
                           "4 requests, 8 pictures and 0 films found whole: 1 finding\n[1]\n"));
        const auto loaded = RoiSession::load(session);
        QVERIFY(loaded && loaded->sources.size() == 2);
        QVERIFY(shell(session, QStringLiteral("orvik-session encode ."))
                    .endsWith(QStringLiteral("[0]\n")));
        for (const RoiSource &source : loaded->sources) {
            const QString film = QStringLiteral("%1/%2.mp4").arg(source.folder, source.archiveName);
            QCOMPARE(FilmFile::read(film)->pictures, source.frames.size());
        }
    }

    void interruptedFilmLeavesNothing()
    {
        FakeProgram::Reply endless;
        endless.files = {{QStringLiteral("$last"), QByteArray("half a film")}};
        endless.hang = true;
        const QString ffmpeg = FakeProgram::replace(QStringLiteral("ffmpeg"), {endless});
        const QString name = QStringLiteral("AIA_171_20240501_000000");
        const QString film = QStringLiteral("%1/%2/%2.mp4").arg(m_road->sessionDirectory, name);
        QVERIFY(QFile::remove(film));
        QProcess encode;
        encode.start(TestFolder::path(QStringLiteral("orvik-session")),
                     {QStringLiteral("encode"), QStringLiteral("--fps=5"),
                      QStringLiteral("--crf=40"), m_road->sessionDirectory});
        QTRY_VERIFY(QFile::exists(film));
        encode.terminate();
        QVERIFY(encode.waitForFinished());
        QCOMPARE(encode.exitStatus(), QProcess::CrashExit); // as a shell wants to see it

        QVERIFY(!QFile::exists(film));
        const FakeProgram::Run run = FakeProgram::runs(ffmpeg).value(0);
        QVERIFY(!QDir(QStringLiteral("/proc/%1").arg(run.processId)).exists());
        QCOMPARE(run.arguments.join(QLatin1Char('|')),
                 QStringLiteral("-y|-framerate|5|-start_number|0|-i|video_frames/frame_%06d.png|"
                                "-c:v|libx264|-crf|40|-pix_fmt|yuv420p|") +
                     film);
    }

private:
    std::unique_ptr<AcquisitionFixture> m_road; // holds a completed session
};

int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    if (QCoreApplication::arguments().value(1) == QLatin1String("run"))
        return runUntilKilled();
    TestSessionTool test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sessiontool.moc"
