#include "tests/acquisition/acquisitionroad.h"
#include "tests/acquisition/sessioncheck.h"

#include <QDir>
#include <QGuiApplication>
#include <QProcess>
#include <QTextStream>
#include <QtTest>

namespace {

const char *const lastLine = "Session completed.";

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
        QTest::addColumn<int>("occurrence"); // of a line of the log that begins so
        for (const auto &[line, occurrence] :
             {std::pair("Session: ", 1), std::pair("curl: ", 1), std::pair("curl: ", 4),
              std::pair("curl: ", 5), std::pair("OK ", 1), std::pair("OK ", 4),
              std::pair("Summary ", 1), std::pair("ffmpeg: ", 2), std::pair(lastLine, 1)})
            QTest::addRow("%s, %d", line, occurrence) << occurrence;
    }

    void killed()
    {
        QFETCH(int, occurrence);
        const QByteArray beginning = QByteArray(QTest::currentDataTag()).split(',').first();
        AcquisitionRoad road; // for its service and its output root
        QProcess session;
        session.start(QCoreApplication::applicationFilePath(), {QStringLiteral("session")});
        int accepted = 0;
        while (occurrence > 0 && (session.canReadLine() || session.waitForReadyRead())) {
            const QByteArray line = session.readLine();
            accepted += line.startsWith("OK ") ? 1 : 0;
            occurrence -= line.startsWith(beginning) ? 1 : 0;
        }
        QCOMPARE(occurrence, 0);
        session.kill();
        QVERIFY(session.waitForFinished());

        const QDir root(road.output.path());
        const QStringList sessions = root.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        QCOMPARE(sessions.size(), 1);
        const SessionCheck check = SessionCheck::of(root.filePath(sessions.first()));
        QCOMPARE(check.faults, QStringList());
        QVERIFY(check.rows >= accepted && check.pictures >= 2 * accepted);
        QVERIFY2(check.strays.size() <= 2, qPrintable(check.strays.join(QLatin1Char(' '))));
        QCOMPARE(!check.descriptor.isEmpty(), beginning == lastLine);
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
