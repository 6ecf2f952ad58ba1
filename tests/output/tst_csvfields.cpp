#include "output/csvfields.h"

#include <QtTest>

class TestCsvFields : public QObject
{
    Q_OBJECT

private slots:
    void splits_data();
    void splits();
    void quotedTextIsReadBack();
};

void TestCsvFields::splits_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("fields");

    const auto row = [](const char *name, const char *line, const QStringList &fields) {
        QTest::newRow(name) << QString::fromLatin1(line) << fields;
    };
    row("empty line", "", {QString()});
    row("commas only", ",,", {QString(), QString(), QString()});
    row("blanks stay", " a , b", {QStringLiteral(" a "), QStringLiteral(" b")});
    row("comma in quotes", "\"a,b\",c", {QStringLiteral("a,b"), QStringLiteral("c")});
    row("quotes within a field", "a\"b,c\"d", {QStringLiteral("ab,cd")});
    row("doubled quote in quotes", "\"a\"\"b\"", {QStringLiteral("a\"b")});
    row("doubled quote outside", "a\"\"b", {QStringLiteral("ab")});
    row("three quotes and an end", "\"\"\"", {QStringLiteral("\"")});
    row("never closed", "a,\"b,c", {QStringLiteral("a"), QStringLiteral("b,c")});
}

void TestCsvFields::splits()
{
    QFETCH(QString, line);
    QFETCH(QStringList, fields);

    CsvFields csv;
    csv.split(QStringLiteral("a longer line, with more, fields, before it"));
    csv.split(line);
    QStringList found;
    for (int i = 0; i < csv.count(); ++i)
        found.append(csv.at(i).toString());
    QCOMPARE(found, fields);
    QVERIFY(csv.at(csv.count()).isEmpty());
    QVERIFY(csv.at(-1).isEmpty());
}

void TestCsvFields::quotedTextIsReadBack()
{
    QCOMPARE(CsvFields::quote({}), QStringLiteral("\"\""));
    const QString label = QStringLiteral("the \"Sun\", \"\"today\"");
    CsvFields csv;
    csv.split(QString(CsvFields::quote(label) + QStringLiteral(",next")));
    QCOMPARE(csv.count(), 2);
    QCOMPARE(csv.at(0).toString(), label);
}

QTEST_APPLESS_MAIN(TestCsvFields)
#include "tst_csvfields.moc"
