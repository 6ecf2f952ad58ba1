#include "tests/acquisition/acquisitionroad.h"
#include "tests/faults/sessioncheck.h"

#include <QDirIterator>
#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>

namespace {

/// Processes of this machine whose command line names @p text, this one's descendants or not.
QStringList processesNaming(const QString &text)
{
    QStringList found;
    const QStringList ids = QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[1-9]*")});
    for (const QString &id : ids) {
        QFile file(QStringLiteral("/proc/%1/cmdline").arg(id));
        if (file.open(QIODevice::ReadOnly) && file.readAll().contains(text.toUtf8()))
            found += id;
    }
    return found;
}

std::unique_ptr<QProcess> startSession()
{
    auto session = std::make_unique<QProcess>();
    session->start(TestFolder::path(QStringLiteral("orvik-session")), QStringList());
    return session;
}

/// However fast the machine is: @p delayMs after the first @p lines of its log.
void killLater(QProcess *session, int lines, int delayMs)
{
    const auto onReadyRead = [session, lines, delayMs]() mutable {
        lines -= session->readAll().count('\n');
        if (lines <= 0)
            QTimer::singleShot(delayMs, session, &QProcess::kill);
    };
    QObject::connect(session, &QProcess::readyRead, session, onReadyRead);
}

QVector<SessionCheck> checksIn(const QString &root)
{
    QVector<SessionCheck> checks;
    const QStringList names = QDir(root).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &name : names)
        checks += SessionCheck::of(QDir(root).filePath(name));
    return checks;
}

} // namespace

/// Sessions in processes of their own: of the same interval side by side, and killed.
class TestSessionProcesses : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }
    void killedAtARandomMoment();
};

void TestSessionProcesses::killedAtARandomMoment()
{
    constexpr int kills = 50;
    constexpr int atOnce = 4;
    constexpr int longestLog = 70; // lines: opening, six requests, and well into the first film
    AcquisitionRoad road;          // for its service and its output root
    const quint32 seed = QRandomGenerator::global()->generate();
    qInfo("seed %u", seed);
    QRandomGenerator random(seed);

    int killed = 0;
    std::vector<std::unique_ptr<QProcess>> sessions;
    const auto isOver = [&killed](const auto &session) {
        const bool over = session->state() == QProcess::NotRunning;
        killed += over && session->exitStatus() == QProcess::CrashExit ? 1 : 0;
        return over;
    };
    QEventLoop untilOneIsOver;
    while (killed < kills) {
        while (int(sessions.size()) < qMin(atOnce, kills - killed)) {
            sessions.push_back(startSession());
            QProcess *session = sessions.back().get();
            QVERIFY(session->waitForStarted());
            connect(session, qOverload<int, QProcess::ExitStatus>(&QProcess::finished),
                    &untilOneIsOver, &QEventLoop::quit);
            killLater(session, random.bounded(longestLog), random.bounded(50));
        }
        untilOneIsOver.exec();
        sessions.erase(std::remove_if(sessions.begin(), sessions.end(), isOver), sessions.end());
    }

    int rows = 0;
    int frames = 0;
    int unfinished = 0;
    const QVector<SessionCheck> checks = checksIn(road.output.path());
    for (const SessionCheck &check : checks) {
        QCOMPARE(check.faults, QStringList());
        QVERIFY2(check.strays.size() <= 2, qPrintable(check.strays.join(QLatin1Char(' '))));
        rows += check.statuses.size();
        frames += check.pictures;
        unfinished += check.hasDescriptor ? 0 : 1;
    }
    qInfo("%d kills, %d sessions begun, %d of them without an end, %d rows, %d frames", kills,
          checks.size(), unfinished, rows, frames);
    QVERIFY(unfinished > 0 && rows > 0 && frames > 0);

    // Nobody is left to stop their curl and ffmpeg, but none of these goes on for ever.
    QTRY_COMPARE(processesNaming(road.output.path()) + processesNaming(road.server.baseUrl()),
                 QStringList());
}

QTEST_MAIN(TestSessionProcesses)
#include "tst_sessionprocesses.moc"
