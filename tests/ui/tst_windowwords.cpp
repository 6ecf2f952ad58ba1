#include "tests/support/literals.h"
#include "ui/captionlabel.h"
#include "ui/runprogress.h"
#include "ui/statusline.h"
#include "ui/utcedit.h"
#include "ui/utctyping.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QStatusBar>
#include <QTimer>
#include <QtTest>

namespace {

constexpr char format[] = "yyyy-MM-dd HH:mm:ss";

} // namespace

/// What the window understands of times, and how it shows ticks, captions and the pace of a run.
class TestWindowWords final : public QObject
{
    Q_OBJECT

private slots:
    /// The field says 2024-01-31 12:34:56 before.
    void init()
    {
        m_window = std::make_unique<QWidget>();
        new QLineEdit(m_window.get()); // has the focus first
        m_edit = new UtcEdit(m_window.get());
        m_edit->setDisplayFormat(QLatin1String(format));
        m_edit->setTimeSpec(Qt::UTC);
        m_edit->setDateTime(QDateTime(QDate(2024, 1, 31), QTime(12, 34, 56), Qt::UTC));
        m_edit->move(0, 50);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    void typed_data()
    {
        QTest::addColumn<int>("clicked");
        QTest::addColumn<QString>("keys"); // < is Backspace, ~ Delete, > Tab; see below
        QTest::addColumn<QString>("expected");
        QTest::addColumn<bool>("isRefused");
        const QString stamp = QStringLiteral("2023-08-09 01:02:03");
        const auto row = [](int clicked, const char *keys, const QString &expected,
                            bool isRefused = false) {
            QTest::addRow("%s at %d", keys, clicked)
                << clicked << QString::fromLatin1(keys) << expected << isRefused;
        };
        for (int clicked = -2; clicked < 20; ++clicked) {
            for (const char *keys :
                 {"2023-08-09 01:02:03", "20230809010203", "2023-08-09T01:02:03Z"})
                row(clicked, keys, stamp);
        }
        row(-1, "12:05", QStringLiteral("2024-01-31 12:05:56"));
        row(0, "2023-02-", QStringLiteral("2023-02-28 12:34:56")); // has no 31st
        row(12, "9:5:7>", QStringLiteral("2024-01-31 09:05:07"));
        row(5, "02<", QStringLiteral("2024-01-31 12:34:56"), true); // month 0
        row(19, "<7", QStringLiteral("2024-01-31 12:34:57"));
        row(19, "~7", QStringLiteral("2024-01-31 12:34:07"));
        row(12, "~7", QStringLiteral("2024-01-31 17:34:56"));
        row(1, "<", QStringLiteral("2024-01-31 12:34:56"));
        row(18, "2021", QStringLiteral("2024-01-31 12:34:21"));
        row(12, "12^", QStringLiteral("2024-01-31 12:35:56"));
        row(-1, "2023>08>>7>", QStringLiteral("2023-08-31 07:34:56"));
        row(14, "<5", QStringLiteral("2024-01-31 15:34:56")); // over the separator
        for (const char *keys : {"1$2", "1%2", "1&2"})
            row(12, keys, QStringLiteral("2024-01-31 12:34:56"));
        row(12, "1!2", QStringLiteral("2024-01-31 02:34:56"));
        row(12, "1>5>", QStringLiteral("2024-01-31 01:05:56"));
        row(13, "~5", QStringLiteral("2024-01-31 05:34:56"));
        row(0, "-5", QStringLiteral("2024-05-31 12:34:56"));
        row(0, ":5", QStringLiteral("2024-01-31 12:34:56"), true);
        row(-1, "1752-09-14 00:00:00", QStringLiteral("1752-09-14 00:00:00")); // the first
        for (const auto &[clicked, key] : {std::pair(0, "<"), {13, "~"}, {19, "~"}})
            row(clicked, key, QStringLiteral("2024-01-31 12:34:56"));
        for (const char *keys : {"2023-13-01 00:00:00>", "2023-02-31 00:00:00", "23-08-09>",
                                 "1600-01-01>", "2023-08-0", "202"})
            row(-1, keys, QStringLiteral("2024-01-31 12:34:56"), true);
    }

    void typed()
    {
        QFETCH(int, clicked);
        QFETCH(QString, keys);
        enter(clicked);
        const QSignalSpy refused(m_edit, &UtcEdit::refused);
        const QHash<QChar, Qt::Key> named = {
            {QLatin1Char('<'), Qt::Key_Backspace}, {QLatin1Char('~'), Qt::Key_Delete},
            {QLatin1Char('>'), Qt::Key_Tab},       {QLatin1Char('^'), Qt::Key_Up},
            {QLatin1Char('$'), Qt::Key_Shift},     {QLatin1Char('%'), Qt::Key_ScrollLock},
            {QLatin1Char('&'), Qt::Key_AltGr},     {QLatin1Char('!'), Qt::Key_F5}};
        for (const QChar key : keys) {
            if (named.contains(key))
                QTest::sendKeyEvent(QTest::Click, m_edit, named.value(key), QString(), {});
            else
                QTest::keyClick(m_edit, key.toLatin1());
        }
        if (m_edit->showsTime())
            QTEST(m_edit->dateTime().toString(QLatin1String(format)), "expected");
        m_edit->clearFocus();
        QTEST(m_edit->text(), "expected");
        QTEST(!refused.isEmpty(), "isRefused");
    }

    void otherKeysAndThePointer()
    {
        auto *line = m_edit->findChild<QLineEdit *>();
        enter(-1);
        QTest::keyClick(m_edit, Qt::Key_7, Qt::ControlModifier);
        m_edit->setReadOnly(true);
        for (const Qt::Key key : {Qt::Key_7, Qt::Key_Backspace})
            QTest::keyClick(m_edit, key);
        m_edit->setReadOnly(false);
        QCOMPARE(line->selectedText() + line->text(), "20242024-01-31 12:34:56"_s);
        enter(-1);
        QTest::keyClicks(m_edit, "202312"_s);
        QTest::keyClick(m_edit, Qt::Key_Backspace);
        QCOMPARE(line->text(), "2023-1-31 12:34:56"_s);
        QVERIFY(!line->hasSelectedText() && line->cursorPosition() == 6);
        enter(1);
        line->setCursorPosition(1);
        QTest::keyClick(m_edit, Qt::Key_Backspace);
        QCOMPARE(line->text(), "-01-31 12:34:56"_s); // the year begins anew
        m_edit->setCalendarPopup(true);
        QTest::mousePress(m_edit, Qt::LeftButton, {}, {m_edit->width() - 5, 9}); // on its arrow
        QTRY_VERIFY(m_edit->calendarWidget()->isVisible());
        QCOMPARE(m_edit->calendarWidget()->firstDayOfWeek(), QLocale::system().firstDayOfWeek());
        m_edit->calendarWidget()->window()->close();
    }

    /// What is typed is over, and counts, when something else is done; and what then comes in.
    void typingEnds()
    {
        auto *line = m_edit->findChild<QLineEdit *>();
        const QPoint place(3, line->height() / 2);
        QGuiApplication::clipboard()->setText("2023-08-09 07:08:09"_s);
        QWheelEvent wheel(place, {}, {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
        QContextMenuEvent menu(QContextMenuEvent::Mouse, place);
        m_edit->setCalendarPopup(true);
        const QDateTime before = m_edit->dateTime();
        QString texts;
        for (int way = 0; way < 5; ++way) {
            m_window->activateWindow(); // a menu has closed
            QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
            m_edit->setDateTime(before);
            enter(12);
            QTest::keyClick(m_edit, Qt::Key_1);
            if (way == 0) {
                m_edit->grab(); // which ends nothing
            } else if (way == 1) {
                QApplication::sendEvent(m_edit, &wheel);
            } else if (way == 2) {
                QTest::mousePress(m_edit, Qt::LeftButton, {}, {m_edit->width() - 5, place.y()});
                m_edit->calendarWidget()->window()->close();
            } else if (way == 3) { // as the middle button does
                QTest::mouseClick(line, Qt::LeftButton, {}, place);
                line->insert(QGuiApplication::clipboard()->text());
            } else {
                QTimer::singleShot(0, this, [] {
                    auto *shown = qobject_cast<QMenu *>(QApplication::activePopupWidget());
                    shown->actions().at(5)->trigger(); // Paste
                    shown->close();
                });
                QApplication::sendEvent(m_edit, &menu);
            }
            texts += line->text().mid(11) + QLatin1Char(' ');
            m_edit->clearFocus();
            texts += m_edit->text() + QLatin1Char('|');
        }
        QCOMPARE(texts, "1:34:56 2024-01-31 01:34:56|02:34:56 2024-01-31 02:34:56|"
                        "01:34:56 2024-01-31 01:34:56|07:08:09 2023-08-09 07:08:09|"
                        "07:08:09 2023-08-09 07:08:09|"_s);
        const int width = UtcEdit().minimumWidth();
        QVERIFY(width > m_edit->fontMetrics().horizontalAdvance(m_edit->text()));
        m_edit->setStyleSheet("font-size: 40pt"_s);
        QVERIFY(m_edit->minimumWidth() > 2 * width);
    }

    void keysAsTheyAreRead()
    {
        QString counts;
        for (int section = UtcTyping::Year; section <= UtcTyping::Second; ++section) {
            const int width = section == UtcTyping::Year ? 4 : 2;
            int finished = 0;
            for (int number = 0; number < (width == 4 ? 10'000 : 100); ++number) {
                const QString keys = QString::number(number);
                finished += read(section, keys.rightJustified(width, QLatin1Char('0'))).isFinished;
            }
            counts += QString::number(finished) + QLatin1Char(' ');
        }
        QCOMPARE(counts, "9999 12 31 24 60 60 "_s);
        for (const char *row : // section keys>text|cursor selected last time
             {"0 >-01-31 12:34:56|0 0 0 240131123456", "2 >2024-01- 12:34:56|8 0 2 240131123456",
              "0 202>202-01-31 12:34:56|3 0 0 240131123456",
              "1 1>2024-1-31 12:34:56|6 0 1 240131123456",
              "1 02>2024-02-29 12:34:56|8 2 1 240229123456",
              "5 123>2024-01-31 12:34:3|18 0 5 240131123403",
              "5 5:>2024-01-31 05:34:56|14 2 4 240131053456",
              "0 202308090102034>2023-08-09 01:02:4|18 0 5 230809010204",
              "3 20230809010203z>2023-08-09 01:02:03|19 0 5 230809010203",
              "3 20231309010203>2024-01-31 20:23:03|19 0 5 240131202303",
              "0 9:60>2024-01-31 09:60:56|17 2 4 ", "3 201>2024-01-31 20:1:56|15 0 4 240131200156",
              "0 20230>2023-0-31 12:34:56|6 0 1 230131123456",
              "0 2023-08-09 01:02:034>2023-08-09 01:02:034|20 0 0 ",
              "0 2023-08-09  0102>2023-08-09 01:02:56|17 2 4 230809010256",
              "0 2023-:5>2023-:5|7 0 0 ", "3 1 2>1 2|3 0 3 ", "2 0 1>2024-01-00 1:34:56|12 0 3 ",
              "2 1>2024-01-1 12:34:56|9 0 2 240101123456"}) {
            const QString typed = QString::fromLatin1(row).section(QLatin1Char('>'), 0, 0);
            const UtcTyping::Reading reading = read(typed.at(0).digitValue(), typed.mid(2));
            QCOMPARE(typed +
                         QString::asprintf(">%s|%d %d %d ", qPrintable(reading.text),
                                           reading.cursor, reading.selected, reading.last) +
                         reading.time.toString("yyMMddHHmmss"_s),
                     QLatin1String(row));
        }
    }

    void pasted_data()
    {
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *text, const char *expected) {
            QTest::newRow(text) << QString::fromLatin1(expected);
        };
        for (const char *text : {"2023-08-01T01:02:03Z", "2023-08-01 01:02:03", "20230801_010203",
                                 "2023-08-01t01:02:03.999z\n", " 2023-08-01 01:02:03 UTC",
                                 "2023-08-01T03:02:03.9+02:00", "2023/08/01_010203",
                                 "2023-08-01T03:02:03+0200", "2023-08-01T01:02:03-00"})
            row(text, "2023-08-01 01:02:03");
        row("2023-08-01T01:02Z", "2023-08-01 01:02:00");
        row("2023-08-01", "2023-08-01 12:34:56");
        row("1:02", "2024-01-31 01:02:00");
        row("01:02", "2024-01-31 01:02:00");
        row("2023.08.01 0102", "2023-08-01 01:02:00");
        row("23:59:59.5", "2024-01-31 23:59:59");
        const QByteArray blanks(81, ' '); // up to the longest text that is read
        row("2023-08-01 01:02:03" + blanks, "2023-08-01 01:02:03");
        row("2023-08-01 01:02:03 " + blanks, "2024-01-31 12:34:56");
        for (const char *text : {"2023-02-31", "1600-01-01", "", "soon", "0x7", "2023-08/01",
                                 "2023-08-01 24:00", "2023-08-01 1", "01:60", "123:00"})
            row(text, "2024-01-31 12:34:56");
    }

    void pasted()
    {
        const QString before = m_edit->text();
        for (const int clicked : {-2, -1, 12}) {
            m_edit->setDateTime(QDateTime::fromString(before, QLatin1String(format)));
            enter(clicked);
            QGuiApplication::clipboard()->setText(QString::fromLatin1(QTest::currentDataTag()));
            QTest::keySequence(m_edit, QKeySequence::Paste);
            m_edit->clearFocus();
            QTEST(m_edit->text(), "expected");
            QCOMPARE(m_edit->dateTime(),
                     QDateTime::fromString(m_edit->text() + QLatin1Char('Z'), Qt::ISODate));
        }
    }

    void runInWords_data()
    {
        QTest::addColumn<bool>("isPlanned");
        QTest::addColumn<int>("done");
        QTest::addColumn<qint64>("elapsedMs");
        const auto row = [](bool isPlanned, int done, qint64 elapsedMs, const char *expected) {
            QTest::newRow(expected) << isPlanned << done << elapsedMs;
        };
        row(false, 1, 0, "Measuring cadences: 1 of 102 datasources");
        row(true, 2, 9'000, "2 of 100 requests");
        row(true, 3, 3'000, "3 of 100 requests, about 2 min left");
        row(true, 50, 10'001, "50 of 100 requests, about 20 s left");
        row(true, 50, 60'000, "50 of 100 requests, about 1 min left");
        row(true, 50, 3'540'001, "50 of 100 requests, about 1 h left");
        row(true, 50, 7'200'000, "50 of 100 requests, about 2 h left");
        row(true, 10, 1'000, "10 of 100 requests, about 10 s left");
        row(true, 50, 50'001, "50 of 100 requests, about 1 min left");
        row(true, 20, 45'001, "20 of 100 requests, about 4 min left");
        row(true, 25, 1'200'001, "25 of 100 requests, about 1 h 10 min left");
        row(true, 100, 1, "100 of 100 requests, 0 of 2 films");
        row(true, 101, 1, "100 of 100 requests, 1 of 2 films");
    }

    void runInWords()
    {
        QFETCH(bool, isPlanned);
        QFETCH(int, done);
        QFETCH(qint64, elapsedMs);
        QCOMPARE(RunProgress::text({isPlanned, done, 102, 2, elapsedMs}),
                 QLatin1String(QTest::currentDataTag()));
        QCOMPARE(RunProgress::text({true, 2, 2, 0, 9}), "2 of 2 requests"_s);
    }

    void statusTellsTheRun()
    {
        QStatusBar bar;
        StatusLine status(&bar);
        status.reset(2);
        status.count(0, 3);
        status.begin();
        QCOMPARE(bar.currentMessage(), "Measuring cadences: 0 of 3 datasources"_s);
        status.count(0, 102);
        QTRY_COMPARE(bar.currentMessage(), "0 of 100 requests"_s); // a second later
        status.count(3, 102);
        status.begin();
        QVERIFY(!bar.currentMessage().contains("about 10 s"_s));
        status.announce("passing"_s);
        QCOMPARE(bar.findChild<QTimer *>()->interval(), 10'000);
        bar.clearMessage();
        QVERIFY(bar.currentMessage().startsWith("3 of 100 requests, about "_s));
        status.end();
        status.reset(1); // nothing is left of the run before
        QCOMPARE(bar.currentMessage(), "Ready"_s);
        status.count(0, 4);
        status.begin();
        QCOMPARE(bar.currentMessage(), "Measuring cadences: 0 of 4 datasources"_s);
        status.count(0, 9);
        status.begin();
        QCOMPARE(bar.currentMessage(), "0 of 8 requests"_s);
    }

    /// The text is where a label of Qt's own has it; a line breaks only where a bar does not fit.
    void captionKeepsOffItsFrame()
    {
        for (const auto &[frame, margin] : {std::pair(0, 0), {0, 3}, {1, 0}, {1, 2}, {1, 9}}) {
            CaptionLabel caption("one   |   two\nfive"_s);
            QLabel label(caption.text());
            for (QLabel *each : {static_cast<QLabel *>(&caption), &label}) {
                each->setFrameShape(frame ? QFrame::Box : QFrame::NoFrame);
                each->setMargin(margin);
                each->resize(400, 70);
            }
            QCOMPARE(caption.grab().toImage(), label.grab().toImage());
            caption.setText("one two   |   three   |   four\nfive   |   six"_s);
            const QFontMetrics metrics = caption.fontMetrics();
            const int besides = 2 * (frame + margin);
            const int indent = metrics.horizontalAdvance(QLatin1Char('x')) / 2 - margin;
            const int room = metrics.horizontalAdvance("one two   |   three   |   four"_s) +
                             besides + frame * std::max(indent, 0);
            QCOMPARE(caption.heightForWidth(room) - caption.heightForWidth(room + 1),
                     metrics.lineSpacing());
        }
    }

private:
    UtcTyping::Reading read(int section, const QString &keys) const
    {
        return UtcTyping::read({m_edit->dateTime(), UtcTyping::Section(section), keys});
    }

    /// Goes into the field: by a click at a position of its text, by Tab (-1), or by that and
    /// Ctrl+A
    /// (-2).
    void enter(int clicked)
    {
        auto *line = m_edit->findChild<QLineEdit *>();
        m_edit->previousInFocusChain()->setFocus();
        if (clicked < 0) {
            QTest::keyClick(m_window->focusWidget(), Qt::Key_Tab);
            if (clicked == -2)
                QTest::keySequence(m_edit, QKeySequence::SelectAll);
        } else {
            line->setCursorPosition(clicked);
            QTest::mouseClick(line, Qt::LeftButton, {},
                              line->inputMethodQuery(Qt::ImCursorRectangle).toRect().center());
        }
        QCOMPARE(QGuiApplication::focusObject(), m_edit);
    }

    std::unique_ptr<QWidget> m_window;
    UtcEdit *m_edit = nullptr;
};

QTEST_MAIN(TestWindowWords)
#include "tst_windowwords.moc"
