#include "ui/runprogress.h"
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
    void optimisationFromMoreThanOneAndAHalfSteps();
    void namesStayText();
    void runInWords_data();
    void runInWords();
};

void TestSourceDetails::optimisationFromMoreThanOneAndAHalfSteps()
{
    const QString note = QStringLiteral("optimization:</b> requested sampling is 1 min, but");
    CatalogSource analysed = source();
    analysed.analysis = CadenceStatistics{40, 90, 80, 100};
    QVERIFY(!page(analysed).contains(note));
    analysed.analysis->medianSeconds = 91;
    QVERIFY(page(analysed).contains(note));
}

void TestSourceDetails::namesStayText()
{
    QVERIFY(page(source()).startsWith(
        QStringLiteral("<h2>&lt;b&gt;%2&lt;/b&gt;</h2><p><b>Catalog path:</b> SDO/A&amp;A<br>")));
    QVERIFY(page(source(R"({"uiLabels": [{"label": "Observatory", "name": "S<D>O"}, "text"]})"))
                .contains(QStringLiteral(
                    "</p><table cellspacing='2' cellpadding='2'><tr><td><b>Observatory</b></td>"
                    "<td>S&lt;D&gt;O</td></tr><tr><td><b></b></td><td></td></tr></table><hr>")));
}

void TestSourceDetails::runInWords_data()
{
    QTest::addColumn<bool>("isPlanned");
    QTest::addColumn<int>("done");
    QTest::addColumn<qint64>("elapsedMs");
    QTest::addColumn<QString>("expected");
    const auto row = [](bool isPlanned, int done, qint64 elapsedMs, const char *expected) {
        QTest::newRow(expected) << isPlanned << done << elapsedMs << QString::fromLatin1(expected);
    };
    row(false, 1, 0, "Measuring cadences: 1 of 102 datasources");
    row(true, 2, 9'000, "2 of 100 requests");
    row(true, 10, 1'000, "10 of 100 requests, about 10 s left");
    row(true, 50, 50'001, "50 of 100 requests, about 1 min left");
    row(true, 20, 45'001, "20 of 100 requests, about 4 min left");
    row(true, 25, 1'200'001, "25 of 100 requests, about 1 h 10 min left");
    row(true, 100, 1, "100 of 100 requests, 0 of 2 films");
    row(true, 101, 1, "100 of 100 requests, 1 of 2 films");
}

void TestSourceDetails::runInWords()
{
    QFETCH(bool, isPlanned);
    QFETCH(int, done);
    QFETCH(qint64, elapsedMs);
    QTEST(RunProgress::text({isPlanned, done, 102, 2, elapsedMs}), "expected");
}

QTEST_GUILESS_MAIN(TestSourceDetails)
#include "tst_sourcedetails.moc"
