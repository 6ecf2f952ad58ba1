#include "ui/utcedit.h"

#include <QCalendarWidget>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QSignalBlocker>
#include <QStyleOptionComboBox>

#include <algorithm>

using UtcTyping::Reading;
using UtcTyping::Run;

namespace {

constexpr int longestPaste = 100; // characters, those around it included

/// Whether @p event puts its text in, and is no command.
bool isTyping(const QKeyEvent &event)
{
    const Qt::KeyboardModifiers commands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    return !event.text().isEmpty() && event.text().at(0).isPrint() &&
           !(event.modifiers() & commands);
}

/// A key that only goes with others, as Shift does with a colon.
bool isModifier(int key)
{
    return (key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock) || key == Qt::Key_AltGr;
}

} // namespace

UtcEdit::UtcEdit(QWidget *parent) : QDateTimeEdit(parent)
{
    reserveWidth();
    lineEdit()->installEventFilter(this); // it gets the mouse itself, and the keys through us
    connect(lineEdit(), &QLineEdit::inputRejected, this,
            [this] { emit refused(tr("This is not a time. Write it as 2024-05-01 12:00:07.")); });
}

bool UtcEdit::showsTime() const
{
    return !m_run || isTime(UtcTyping::read(*m_run));
}

void UtcEdit::stepBy(int steps)
{
    endRun();
    QDateTimeEdit::stepBy(steps);
}

QValidator::State UtcEdit::validate(QString &text, int &position) const
{
    if (m_run)
        return QValidator::Intermediate; // shown by us, and nothing for the base to mend
    const QString added = text.mid(m_cursor, std::max(position - m_cursor, 0));
    const QValidator::State state = QDateTimeEdit::validate(text, position); // may change the text
    if (state == QValidator::Acceptable || added.size() > longestPaste)
        return state;
    const std::optional<QDateTime> pasted = UtcTyping::fromPasted(added, dateTime());
    if (!pasted || !isAllowed(*pasted))
        return state;
    text = textFromDateTime(*pasted);
    position = text.size();
    return QValidator::Acceptable;
}

bool UtcEdit::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == lineEdit()) {
        if (event->type() == QEvent::MouseButtonPress)
            endRun();
        else if (event->type() == QEvent::MouseButtonRelease) // the middle one pastes
            m_cursor = insertPosition();
    }
    return QDateTimeEdit::eventFilter(watched, event);
}

void UtcEdit::changeEvent(QEvent *event)
{
    QDateTimeEdit::changeEvent(event);
    reserveWidth(); // for another font, or another style
}

void UtcEdit::keyPressEvent(QKeyEvent *event)
{
    const bool erases = event->modifiers() == Qt::NoModifier &&
                        (event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete);
    if (isReadOnly())
        QDateTimeEdit::keyPressEvent(event);
    else if (erases)
        erase(event->key() == Qt::Key_Backspace);
    else if (!isTyping(*event) || !typeKey(*event)) {
        if (!isModifier(event->key()))
            endRun();
        m_cursor = insertPosition();
        QDateTimeEdit::keyPressEvent(event);
    }
}

void UtcEdit::contextMenuEvent(QContextMenuEvent *event)
{
    endRun();
    m_cursor = insertPosition();
    QDateTimeEdit::contextMenuEvent(event);
}

void UtcEdit::mousePressEvent(QMouseEvent *event)
{
    endRun();
    // Made when it is first opened: a start need not wait for it.
    if (calendarPopup())
        calendarWidget()->setFirstDayOfWeek(QLocale::system().firstDayOfWeek());
    QDateTimeEdit::mousePressEvent(event);
}

void UtcEdit::focusOutEvent(QFocusEvent *event)
{
    endRun();
    QDateTimeEdit::focusOutEvent(event);
}

bool UtcEdit::focusNextPrevChild(bool next)
{
    if (m_run) { // from the section that was typed, though the next one may be selected already
        const UtcTyping::Section last = UtcTyping::read(*m_run).last;
        endRun();
        setCurrentSectionIndex(last);
    }
    return QDateTimeEdit::focusNextPrevChild(next);
}

/// The base's own size leaves out the arrow; the last digit of the time must stay in view.
void UtcEdit::reserveWidth()
{
    QStyleOptionComboBox option;
    option.initFrom(this);
    const QSize text(fontMetrics().horizontalAdvance(QStringLiteral("8888-88-88 88:88:88 ")),
                     fontMetrics().height());
    setMinimumWidth(style()->sizeFromContents(QStyle::CT_ComboBox, &option, text, this).width());
}

/// False when @p event is for the base: a separator that is typed first leads on to the next
/// section.
bool UtcEdit::typeKey(const QKeyEvent &event)
{
    const QChar key = event.text().at(0);
    const bool isDigit = UtcTyping::isKey(key) && key.isDigit();
    if (!m_run && !isDigit)
        return false;
    if (!UtcTyping::isKey(key))
        return true;
    if (!m_run)
        m_run = newRun(insertPosition());
    m_run->keys += key;
    showRun();
    return true;
}

/// Takes back the last key; with nothing typed, what is selected or stands beside the cursor.
void UtcEdit::erase(bool backwards)
{
    if (m_run) {
        m_run->keys.chop(1);
        showRun();
        return;
    }
    const QString text = lineEdit()->text();
    const bool isSelected = lineEdit()->hasSelectedText();
    int end = insertPosition();
    if (backwards && !isSelected)
        end -= end == UtcTyping::positionOf(UtcTyping::sectionAt(end)) ? 2 : 1;
    if (end < 0 || (!backwards && !isSelected && (end >= text.size() || !text.at(end).isDigit())))
        return;
    Run run = newRun(end);
    const int begin = UtcTyping::positionOf(run.start);
    run.keys = text.mid(begin, end - begin);
    m_run = run;
    showRun();
}

/// Where in its text the field puts in what comes next.
int UtcEdit::insertPosition() const
{
    const QLineEdit &line = *lineEdit();
    return line.hasSelectedText() ? line.selectionStart() : line.cursorPosition();
}

Run UtcEdit::newRun(int position) const
{
    return {dateTime(), UtcTyping::sectionAt(position), QString()};
}

void UtcEdit::showRun()
{
    const Reading reading = UtcTyping::read(*m_run);
    setDateTime(isAllowed(reading.time) ? reading.time : m_run->before);
    const QSignalBlocker quiet(lineEdit()); // the base class would parse the text and complete it
    lineEdit()->setText(reading.text);
    lineEdit()->setSelection(reading.cursor, reading.selected); // of none: puts the cursor there
}

/// What was typed is a time now, or it is not.
void UtcEdit::endRun()
{
    if (!m_run)
        return;
    const Reading reading = UtcTyping::read(*m_run);
    const QDateTime before = m_run->before;
    m_run.reset();
    setDateTime(isTime(reading) ? reading.time : before); // shows it in full
    setCurrentSectionIndex(UtcTyping::sectionAt(reading.cursor));
    if (!isTime(reading))
        emit refused(tr("%1 is not a time. The field keeps the previous one.").arg(reading.text));
}

bool UtcEdit::isTime(const UtcTyping::Reading &reading) const
{
    return reading.isFinished && isAllowed(reading.time);
}

bool UtcEdit::isAllowed(const QDateTime &time) const
{
    return time.isValid() && time >= minimumDateTime() && time <= maximumDateTime();
}
