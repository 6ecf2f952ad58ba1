#include "tests/acquisition/acquisitionroad.h"
#include "tests/faults/sessioncheck.h"

#include <QDir>
#include <QGuiApplication>
#include <QProcess>
#include <QTextStream>
#include <QtTest>

namespace {

/// One session without a window, in a process of its own, whose log goes to standard output.
int runSession()
{
    QTextStream out(stdout);
    AcquisitionController controller;
    QObject::connect(&controller, &AcquisitionController::logMessage, &controller,
                     [&out](const QString &line) { out << line << Qt::endl; });
    QObject::connect(&controller, &AcquisitionController::finished, qApp, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    const bool started = controller.start(
        AcquisitionRoad::settings(180, {AcquisitionRoad::aia(), AcquisitionRoad::suvi()}));
    return started ? QCoreApplication::exec() : 1;
}

} // namespace

/// Sessions whose program is killed: what they have said to have is there, and whole.
class TestSessionKills : public QObject
{
    Q_OBJECT

private slots:
    void init() { TestFolder::clearKeys(); }

    void killed_data()
    {
        QTest::addColumn<QString>("lines"); // of the log; the last begins thus
        QTest::addColumn<int>("occurrence");
        QTest::addColumn<bool>("ended");
        const auto row = [](const char *line, int occurrence, bool ended = false) {
            QTest::addRow("%s, %d", line, occurrence)
                << QString::fromLatin1(line) << occurrence << ended;
        };
        row("Session: ", 1);
        row("curl: ", 1); // the probe
        row("curl: ", 4);
        row("curl: ", 5); // a download
        row("OK ", 1);
        row("OK ", 4);
        row("Summary ", 1);
        row("ffmpeg: ", 2);
        row("Session completed.", 1, true);
    }

    void killed()
    {
        QFETCH(QString, lines);
        QFETCH(int, occurrence);

        AcquisitionRoad road; // for its service and its output root
        QProcess session;
        session.start(QCoreApplication::applicationFilePath(), {QStringLiteral("session")});
        int accepted = 0;
        while (occurrence > 0 && (session.canReadLine() || session.waitForReadyRead())) {
            const QString line = QString::fromLocal8Bit(session.readLine());
            accepted += line.startsWith(QLatin1String("OK ")) ? 1 : 0;
            occurrence -= line.startsWith(lines) ? 1 : 0;
        }
        QCOMPARE(occurrence, 0);
        session.kill();
        QVERIFY(session.waitForFinished());

        const QDir root(road.output.path());
        const QStringList sessions = root.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        QCOMPARE(sessions.size(), 1);
        const SessionCheck check = SessionCheck::of(root.filePath(sessions.first()));
        QCOMPARE(check.faults, QStringList());
        QVERIFY(check.statuses.size() >= accepted && check.pictures >= 2 * accepted);
        QVERIFY2(check.strays.size() <= 2, qPrintable(check.strays.join(QLatin1Char(' '))));
        QTEST(check.hasDescriptor, "ended");
    }
};

int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    if (application.arguments().value(1) == QLatin1String("session"))
        return runSession();
    TestSessionKills test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sessionkills.moc"
