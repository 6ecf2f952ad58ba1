#include "acquisition/sessiontally.h"
#include "acquisition/sourceplan.h"
#include "session/acquisitionsettings.h"

#include <QtTest>

namespace {

QDateTime startUtc()
{
    return {QDate(2024, 5, 1), QTime(0, 0), Qt::UTC};
}

/// Seconds since the epoch of times given as "0 300 900" after the start.
QVector<qint64> framesAt(const QString &offsets)
{
    QVector<qint64> seconds;
    const QStringList texts = offsets.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &text : texts)
        seconds.append(startUtc().toSecsSinceEpoch() + text.toInt());
    return seconds;
}

} // namespace

/// From the answers of the archive to the sampling of a datasource.
class TestCadenceProbe : public QObject
{
    Q_OBJECT

private slots:
    void samplingFollowsTheArchive_data();
    void samplingFollowsTheArchive();
};

void TestCadenceProbe::samplingFollowsTheArchive_data()
{
    QTest::addColumn<QString>("frames");
    QTest::addColumn<int>("stepSeconds");
    QTest::addColumn<int>("firstOffset");
    QTest::addColumn<QString>("found"); // as the log tells it

    QTest::newRow("sparse: in phase with the instrument")
        << "7 607 1207 1507" << 600 << 7 << "4 frame(s), observed median 600 s (min 300, max 600)";
    QTest::newRow("even count: the upper of the middle two")
        << "0 300 900" << 600 << 0 << "3 frame(s), observed median 600 s (min 300, max 600)";
    QTest::newRow("denser than asked for: the cadence and the start stay")
        << "5 50 95" << 60 << 0 << "3 frame(s), observed median 45 s (min 45, max 45)";
    QTest::newRow("just the cadence: the start stays")
        << "5 65" << 60 << 0 << "2 frame(s), observed median 60 s (min 60, max 60)";
    QTest::newRow("first frame before the interval: the start stays")
        << "-1 719" << 720 << 0 << "2 frame(s), observed median 720 s (min 720, max 720)";
    QTest::newRow("first frame at the very end of the interval")
        << "3600 7200" << 3600 << 3600 << "2 frame(s), observed median 3600 s (min 3600, max 3600)";
    QTest::newRow("a single frame tells no spacing") << "30" << 60 << 0 << "1 frame(s)";
    QTest::newRow("an empty archive")
        << "" << 60 << 0 << "no frames returned; scheduling every 60 s with normal validation.";
}

void TestCadenceProbe::samplingFollowsTheArchive()
{
    QFETCH(QString, frames);
    QFETCH(int, stepSeconds);
    QFETCH(int, firstOffset);
    QFETCH(QString, found);

    AcquisitionSettings settings;
    settings.startUtc = startUtc();
    settings.endUtc = startUtc().addSecs(3600);
    const DataSource source = {0, QStringLiteral("EIT 171"), QString()};
    const SourcePlan plan =
        SourcePlanning::plan(source, PreflightMode::QuickProbe, framesAt(frames), settings);
    QCOMPARE(plan.schedule.stepMs, qint64(stepSeconds) * 1000);
    QCOMPARE(plan.schedule.firstMs, startUtc().addSecs(firstOffset).toMSecsSinceEpoch());
    QCOMPARE(plan.schedule.lastMs, settings.endUtc.toMSecsSinceEpoch());
    if (!found.endsWith(QLatin1Char('.')))
        found += QStringLiteral("; acquisition step=%1 s.").arg(stepSeconds);
    QCOMPARE(plan.logLine, QStringLiteral("Quick probe EIT 171: ") + found);
}

QTEST_GUILESS_MAIN(TestCadenceProbe)
#include "tst_cadenceprobe.moc"
