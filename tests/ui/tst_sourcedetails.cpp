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

QTEST_GUILESS_MAIN(TestSourceDetails)
#include "tst_sourcedetails.moc"
