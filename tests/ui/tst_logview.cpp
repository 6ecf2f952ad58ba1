#include "ui/logview.h"

#include <QDockWidget>
#include <QFontInfo>
#include <QTextBlock>
#include <QTextEdit>
#include <QtTest>

class TestLogView : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void classesHaveColours_data();
    void classesHaveColours();
    void titleCountsUntilCleared();
    void anyTextIsOneEntry_data();
    void anyTextIsOneEntry();
    void columnsStayAligned();

private:
    std::unique_ptr<QTextEdit> m_edit;
    std::unique_ptr<QDockWidget> m_dock;
    std::unique_ptr<LogView> m_log;
};

void TestLogView::init()
{
    m_edit = std::make_unique<QTextEdit>();
    m_dock = std::make_unique<QDockWidget>(QStringLiteral("Log"));
    m_log = std::make_unique<LogView>(m_edit.get(), m_dock.get());
}

void TestLogView::classesHaveColours_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<int>("weight");
    QTest::newRow("plain") << QStringLiteral("hello") << QColor(1, 2, 3) << int(QFont::Normal);
    QTest::newRow("info") << QStringLiteral("curl: x") << QColor(105, 175, 235)
                          << int(QFont::Normal);
    QTest::newRow("success") << QStringLiteral("OK x") << QColor(90, 220, 115)
                             << int(QFont::Normal);
    QTest::newRow("warning") << QStringLiteral("REJECT x") << QColor(255, 190, 70)
                             << int(QFont::Bold);
    QTest::newRow("error") << QStringLiteral("ERROR x") << QColor(255, 90, 90) << int(QFont::Bold);
}

void TestLogView::classesHaveColours()
{
    QFETCH(QString, text);
    QPalette palette = m_edit->palette();
    palette.setColor(QPalette::Text, QColor(1, 2, 3));
    m_edit->setPalette(palette);
    m_log->append(text);

    QTextBlock::iterator it = m_edit->document()->firstBlock().begin();
    QVERIFY(QRegularExpression(QStringLiteral("^\\[\\d\\d:\\d\\d:\\d\\d\\] $"))
                .match(it.fragment().text())
                .hasMatch());
    QCOMPARE(it.fragment().charFormat().foreground().color(), QColor(135, 140, 150));
    ++it;
    QCOMPARE(it.fragment().text(), text);
    QTEST(it.fragment().charFormat().foreground().color(), "colour");
    QTEST(it.fragment().charFormat().fontWeight(), "weight");
}

void TestLogView::titleCountsUntilCleared()
{
    QCOMPARE(m_dock->windowTitle(), QStringLiteral("Log"));
    m_log->append(QStringLiteral("warning: x failed"));
    m_log->append(QStringLiteral("ERROR x"));
    m_log->append(QStringLiteral("ERROR y"));
    QCOMPARE(m_dock->windowTitle(), QStringLiteral("Log  -  ERR 2 / WARN 1"));
    m_log->clear();
    QCOMPARE(m_dock->windowTitle(), QStringLiteral("Log  -  ERR 0 / WARN 0"));
    QVERIFY(m_edit->document()->isEmpty());
}

void TestLogView::anyTextIsOneEntry_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("several lines") << QStringLiteral("a\nb\n\nc");
    QTest::newRow("markup") << QStringLiteral("<b>x</b> &amp; %1");
    QTest::newRow("other scripts") << QStringLiteral("太陽 الشمس ☀");
    QTest::newRow("1 MB") << QString(1'000'000, QLatin1Char('x'));
}

void TestLogView::anyTextIsOneEntry()
{
    QFETCH(QString, text);
    m_edit->show();
    m_log->append(text);
    m_log->append(QStringLiteral("next"));
    const QString shown = m_edit->toPlainText();
    QCOMPARE(shown.mid(11, text.size()), text);
    QCOMPARE(shown.mid(11 + text.size(), 2), QStringLiteral("\n["));
    QVERIFY(shown.endsWith(QStringLiteral("] next\n")));
    QVERIFY(m_edit->textCursor().atEnd());
    QVERIFY(!m_edit->document()->isUndoAvailable());
}

void TestLogView::columnsStayAligned()
{
    QFont font(QStringLiteral("Courier New"), 9);
    m_edit->setFont(font);
    const LogView log(m_edit.get(), m_dock.get());
    const QFontMetrics metrics(m_edit->font());
    QCOMPARE(metrics.horizontalAdvance(QStringLiteral("iiii")),
             metrics.horizontalAdvance(QStringLiteral("WWWW")));
}

QTEST_MAIN(TestLogView)
#include "tst_logview.moc"
