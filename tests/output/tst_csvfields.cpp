#include "output/csvfields.h"

#include <QtTest>

class TestCsvFields : public QObject
{
    Q_OBJECT

private slots:
    void splits();
};

void TestCsvFields::splits()
{
    const QVector<std::pair<QString, const char *>> lines{
        {{}, "<>"},
        {QStringLiteral(",,"), "<><><>"},
        {QStringLiteral(" a , b"), "< a >< b>"},
        {QStringLiteral("\"a,b\",c"), "<a,b><c>"},
        {QStringLiteral("a\"b,c\"d"), "<ab,cd>"},
        {QStringLiteral("a\"\"b"), "<ab>"}, // doubled, but not within quotes
        {QStringLiteral("\"\"\""), "<\">"},
        {QStringLiteral("a,\"b,c"), "<a><b,c>"}, // never closed
        {CsvFields::quote({}), "<>"},
        {CsvFields::quote(QStringLiteral("the \"\"Sun\",")), "<the \"\"Sun\",>"},
    };
    CsvFields csv; // one for all: no field may be left from the line before
    for (const auto &[line, fields] : lines) {
        csv.split(line);
        QString found;
        for (int i = 0; i < csv.count(); ++i)
            found += QLatin1Char('<') + csv.at(i) + QLatin1Char('>');
        QCOMPARE(found, QLatin1String(fields));
        QVERIFY(csv.at(csv.count()).isEmpty() && csv.at(-1).isEmpty());
    }
}

QTEST_APPLESS_MAIN(TestCsvFields)
#include "tst_csvfields.moc"
