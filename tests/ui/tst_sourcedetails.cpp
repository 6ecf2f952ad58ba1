#include "ui/sourcedetails.h"

#include <QJsonArray>
#include <QtTest>

namespace {

CatalogSource aia171()
{
    return {{10, QStringLiteral("AIA 171"), QStringLiteral("SDO/AIA/171")},
            {{QStringLiteral("start"), QStringLiteral("2010-06-02 00:05:36")},
             {QStringLiteral("end"), QStringLiteral("2024-05-01 12:00:00")}},
            std::nullopt};
}

RequestedSampling everyMinute()
{
    const QDateTime start(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC);
    return {start, start.addSecs(3600), 60};
}

const QString optimisation =
    QStringLiteral("<b>Orvik optimization:</b> requested sampling is 1 min");

} // namespace

class TestSourceDetails : public QObject
{
    Q_OBJECT

private slots:
    void pageIsWholeAndInOrder();
    void textsOfTheServiceStayText();
    void cadence_data();
    void cadence();
    void optimisationFromMoreThanOneAndAHalfSteps();
    void labelsBecomeATable();
};

void TestSourceDetails::pageIsWholeAndInOrder()
{
    QCOMPARE(SourceDetails::page(aia171(), everyMinute()),
             QStringLiteral(
                 "<h2>AIA 171</h2><p><b>Catalog path:</b> SDO/AIA/171<br><b>sourceId:</b> "
                 "10</p><hr><p><b>Archive availability</b><br>2010-06-02 00:05:36 UTC<br>to<br>"
                 "2024-05-01 12:00:00 UTC</p><p><b>Cadence strategy:</b> not prepared yet.<br>At "
                 "acquisition start dense AIA sources use the requested cadence directly; "
                 "slower/unknown sources receive only a short cadence probe.</p><p>Requested "
                 "interval: <i>2024-05-01 10:00:00 -> 2024-05-01 11:00:00 UTC</i>.</p><hr><p>"
                 "<small>The requested cadence is a sampling target. Dense AIA sources start "
                 "immediately without a full-range JPX scan. For slower or unknown sources Orvik "
                 "performs only a short probe to estimate whether redundant requests can be "
                 "reduced.</small></p>"));
}

void TestSourceDetails::textsOfTheServiceStayText()
{
    CatalogSource source = aia171();
    source.source.nickname = QStringLiteral("<b>%2</b>");
    source.source.path = QStringLiteral("a&b");
    source.entry[QStringLiteral("end")] = QJsonValue::Null;
    const QString page = SourceDetails::page(source, everyMinute());
    QVERIFY2(page.startsWith(QStringLiteral(
                 "<h2>&lt;b&gt;%2&lt;/b&gt;</h2><p><b>Catalog path:</b> a&amp;b<br>")),
             qPrintable(page));
    QVERIFY(page.contains(QStringLiteral("<br>to<br> UTC</p>")));
}

void TestSourceDetails::cadence_data()
{
    QTest::addColumn<int>("uniqueFrames");
    QTest::addColumn<int>("medianSeconds");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("line");
    QTest::newRow("dense") << -1 << 60
                           << QStringLiteral("Orvik samples directly every 1 min and skips")
                           << QStringLiteral("Cadence: dense-source fast path; direct sampling "
                                             "every 1 min (full JPX scan skipped).");
    QTest::newRow("probe without answer")
        << 0 << 0 << QStringLiteral("quick probe unavailable; Orvik uses the requested cadence")
        << QStringLiteral("Cadence: quick probe unavailable or no frames returned.");
    QTest::newRow("one frame") << 1 << 0
                               << QStringLiteral("<b>Frames:</b> 1 unique frame in the selected")
                               << QStringLiteral(
                                      "Cadence: 1 unique frame in the selected interval.");
    QTest::newRow("probed") << 11 << 240
                            << QStringLiteral("about <b>4 min</b><br>11 probe frames; observed "
                                              "range 3 min 50 s - 8 min.</p>")
                            << QStringLiteral("Cadence: 11 unique frames, effective median 4 min "
                                              "(min 3 min 50 s, max 8 min).");
}

void TestSourceDetails::cadence()
{
    QFETCH(int, uniqueFrames);
    QFETCH(int, medianSeconds);
    QFETCH(QString, section);
    QFETCH(QString, line);
    CatalogSource source = aia171();
    source.analysis = SourceCadence{uniqueFrames, medianSeconds, 230, 480};
    const QString page = SourceDetails::page(source, everyMinute());
    QVERIFY2(page.contains(section), qPrintable(page));

    const QString before = SourceDetails::toolTip(source.source.path, source.entry);
    const QString start = QStringLiteral(
        "SDO/AIA/171\nAvailable: 2010-06-02 00:05:36 -> 2024-05-01 12:00:00\nCadence: ");
    QCOMPARE(before, start + QStringLiteral("analyzed automatically for the selected UTC interval "
                                            "at acquisition start."));
    const QString after = SourceDetails::toolTipWithCadence(before, *source.analysis);
    QCOMPARE(after, start.left(start.size() - 9) + line);
    QCOMPARE(SourceDetails::toolTipWithCadence(after, *source.analysis), after);
}

void TestSourceDetails::optimisationFromMoreThanOneAndAHalfSteps()
{
    CatalogSource source = aia171();
    source.analysis = SourceCadence{40, 90, 80, 100};
    QVERIFY(!SourceDetails::page(source, everyMinute()).contains(optimisation));
    source.analysis->medianSeconds = 91;
    QVERIFY(SourceDetails::page(source, everyMinute()).contains(optimisation));
}

void TestSourceDetails::labelsBecomeATable()
{
    CatalogSource source = aia171();
    source.entry[QStringLiteral("uiLabels")] =
        QJsonArray{QJsonObject{{QStringLiteral("label"), QStringLiteral("Observatory")},
                               {QStringLiteral("name"), QStringLiteral("S<D>O")}},
                   QStringLiteral("not an object")};
    QVERIFY(SourceDetails::page(source, everyMinute())
                .contains(QStringLiteral(
                    "</p><table cellspacing='2' cellpadding='2'><tr><td><b>Observatory</b></td>"
                    "<td>S&lt;D&gt;O</td></tr><tr><td><b></b></td><td></td></tr></table><hr>")));
}

QTEST_GUILESS_MAIN(TestSourceDetails)
#include "tst_sourcedetails.moc"
