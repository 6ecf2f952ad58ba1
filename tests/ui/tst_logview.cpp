#include "ui/logview.h"

#include <QDockWidget>
#include <QTextEdit>
#include <QtTest>

class TestLogView : public QObject
{
    Q_OBJECT

private slots:
    void titleCountsUntilCleared();
    void anyTextIsOneEntry_data();
    void anyTextIsOneEntry();

private:
    QTextEdit m_edit;
    QDockWidget m_dock{QStringLiteral("Log")};
    LogView m_log{&m_edit, &m_dock};
};

void TestLogView::titleCountsUntilCleared()
{
    m_log.clear();
    for (const char *text : {"warning: x failed", "ERROR x", "plain", "ERROR y"})
        m_log.append(QString::fromLatin1(text));
    QCOMPARE(m_dock.windowTitle(), QStringLiteral("Log  -  ERR 2 / WARN 1"));
    m_log.clear();
    QCOMPARE(m_dock.windowTitle(), QStringLiteral("Log  -  ERR 0 / WARN 0"));
    QVERIFY(m_edit.document()->isEmpty());
}

void TestLogView::anyTextIsOneEntry_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("several lines") << QStringLiteral("a\nb\n\nc");
    QTest::newRow("markup") << QStringLiteral("<b>x</b> &amp; %1");
    QTest::newRow("other scripts") << QStringLiteral("太陽 الشمس ☀");
    QTest::newRow("a word of 1 MB") << QString(1'000'000, QLatin1Char('x'));
}

void TestLogView::anyTextIsOneEntry()
{
    QFETCH(QString, text);
    m_edit.show();
    m_log.clear();
    m_log.append(text);
    m_log.append(QStringLiteral("next"));
    const QString shown = m_edit.toPlainText();
    QCOMPARE(shown.mid(11, text.size()), text);
    QCOMPARE(shown.mid(11 + text.size(), 2), QStringLiteral("\n["));
    QVERIFY(shown.endsWith(QStringLiteral("] next\n")));
    QVERIFY(m_edit.textCursor().atEnd());
    QVERIFY(!m_edit.document()->isUndoAvailable());
}

QTEST_MAIN(TestLogView)
#include "tst_logview.moc"
