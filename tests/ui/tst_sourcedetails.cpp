#include "ui/sourcedetails.h"

#include <QJsonDocument>
#include <QtTest>

namespace {

CatalogSource source(const char *entry = R"({"start": "2010", "end": "2024"})")
{
    return {{10, QStringLiteral("<b>%2</b>"), QStringLiteral("SDO/A&A")},
            QJsonDocument::fromJson(entry).object(),
            std::nullopt};
}

QString page(const CatalogSource &described)
{
    const QDateTime start(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC);
    return SourceDetails::page(described, {start, start.addSecs(3600), 60});
}

} // namespace

class TestSourceDetails : public QObject
{
    Q_OBJECT

private slots:
    void pageIsWholeAndNamesStayText();
    void cadence_data();
    void cadence();
    void optimisationFromMoreThanOneAndAHalfSteps();
    void labelsBecomeATable();
};

void TestSourceDetails::pageIsWholeAndNamesStayText()
{
    QCOMPARE(
        page(source()),
        QStringLiteral(
            "<h2>&lt;b&gt;%2&lt;/b&gt;</h2><p><b>Catalog path:</b> SDO/A&amp;A<br>"
            "<b>sourceId:</b> 10</p><hr><p><b>Archive availability</b><br>2010 UTC<br>to<br>"
            "2024 UTC</p><p><b>Cadence strategy:</b> not prepared yet.<br>At acquisition start "
            "dense AIA sources use the requested cadence directly; slower/unknown sources "
            "receive only a short cadence probe.</p><p>Requested interval: <i>2024-05-01 "
            "10:00:00 -> 2024-05-01 11:00:00 UTC</i>.</p><hr><p><small>The requested cadence "
            "is a sampling target. Dense AIA sources start immediately without a full-range "
            "JPX scan. For slower or unknown sources Orvik performs only a short probe to "
            "estimate whether redundant requests can be reduced.</small></p>"));
}

void TestSourceDetails::cadence_data()
{
    QTest::addColumn<int>("uniqueFrames");
    QTest::addColumn<int>("medianSeconds");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("line");
    const auto row = [](const char *situation, int frames, int median, const char *section,
                        const char *line) {
        QTest::newRow(situation) << frames << median << QString::fromLatin1(section)
                                 << QString::fromLatin1(line);
    };
    row("dense", -1, 60, "Orvik samples directly every 1 min and skips",
        "dense-source fast path; direct sampling every 1 min (full JPX scan skipped).");
    row("probe without answer", 0, 0, "quick probe unavailable; Orvik uses the requested cadence",
        "quick probe unavailable or no frames returned.");
    row("one frame", 1, 0, "<b>Frames:</b> 1 unique frame in the selected",
        "1 unique frame in the selected interval.");
    row("probed", 11, 240,
        "about <b>4 min</b><br>11 probe frames; observed range 3 min 50 s - 8 min.</p>",
        "11 unique frames, effective median 4 min (min 3 min 50 s, max 8 min).");
}

void TestSourceDetails::cadence()
{
    QFETCH(QString, section);
    QFETCH(QString, line);
    QFETCH(int, uniqueFrames);
    QFETCH(int, medianSeconds);
    CatalogSource analysed = source();
    analysed.analysis = SourceCadence{uniqueFrames, medianSeconds, 230, 480};
    QVERIFY2(page(analysed).contains(section), qPrintable(page(analysed)));

    const QString start = QStringLiteral("SDO/A&A\nAvailable: 2010 -> 2024\nCadence: ");
    const QString before = SourceDetails::toolTip(analysed.source.path, analysed.entry);
    QCOMPARE(before, start + QStringLiteral("analyzed automatically for the selected UTC interval "
                                            "at acquisition start."));
    const QString after = SourceDetails::toolTipWithCadence(before, *analysed.analysis);
    QCOMPARE(after, start + line);
    QCOMPARE(SourceDetails::toolTipWithCadence(after, *analysed.analysis), after);
}

void TestSourceDetails::optimisationFromMoreThanOneAndAHalfSteps()
{
    const QString note = QStringLiteral("optimization:</b> requested sampling is 1 min, but");
    CatalogSource analysed = source();
    analysed.analysis = SourceCadence{40, 90, 80, 100};
    QVERIFY(!page(analysed).contains(note));
    analysed.analysis->medianSeconds = 91;
    QVERIFY(page(analysed).contains(note));
}

void TestSourceDetails::labelsBecomeATable()
{
    QVERIFY(page(source(R"({"uiLabels": [{"label": "Observatory", "name": "S<D>O"}, "text"]})"))
                .contains(QStringLiteral(
                    "</p><table cellspacing='2' cellpadding='2'><tr><td><b>Observatory</b></td>"
                    "<td>S&lt;D&gt;O</td></tr><tr><td><b></b></td><td></td></tr></table><hr>")));
}

QTEST_GUILESS_MAIN(TestSourceDetails)
#include "tst_sourcedetails.moc"
