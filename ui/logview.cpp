#include "ui/logview.h"

#include "base/loglineclass.h"

#include <QDockWidget>
#include <QLocale>
#include <QTextCursor>
#include <QTextEdit>
#include <QTime>

using LogLineClass::LineClass;

namespace {

QTextCharFormat format(const QColor &colour, QFont::Weight weight)
{
    QTextCharFormat format;
    format.setForeground(colour);
    format.setFontWeight(weight);
    return format;
}

QTextCharFormat format(LineClass lineClass, const QPalette &palette)
{
    const std::optional<QRgb> colour = LogLineClass::colour(lineClass);
    return format(colour ? QColor(*colour) : palette.color(QPalette::Text),
                  LogLineClass::isBold(lineClass) ? QFont::Bold : QFont::Normal);
}

/// Whether @p text has a word so long that it makes word wrap slow: Qt searches for the end of the
/// word again for each line, which is quadratic in its length.
bool hasEndlessWord(const QString &text)
{
    constexpr int endlessChars = 10'000;
    int wordStart = 0;
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i).isSpace())
            wordStart = i + 1;
        else if (i - wordStart >= endlessChars)
            return true;
    }
    return false;
}

/// The named font may be missing; whatever stands in for it must keep the columns aligned.
void keepColumnsAligned(QTextEdit *log)
{
    QFont font = log->font();
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
    log->setFont(font);
}

} // namespace

LogView::LogView(QTextEdit *log, QDockWidget *dock, QObject *parent)
    : QObject(parent), m_log(log), m_dock(dock)
{
    log->setUndoRedoEnabled(false); // else every line would be stored twice
    log->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    keepColumnsAligned(log);
}

void LogView::append(const QString &text)
{
    const LineClass lineClass = LogLineClass::classify(text);
    m_errors += lineClass == LineClass::Error ? 1 : 0;
    m_warnings += lineClass == LineClass::Warning ? 1 : 0;

    QTextCursor cursor(m_log->document());
    cursor.movePosition(QTextCursor::End);
    cursor.beginEditBlock(); // the line is laid out once, not after each of its pieces
    cursor.insertText(QStringLiteral("[%1] ").arg(
                          QLocale::c().toString(QTime::currentTime(), QStringLiteral("HH:mm:ss"))),
                      format(QColor(135, 140, 150), QFont::Normal));
    if (hasEndlessWord(text))
        m_log->setWordWrapMode(QTextOption::WrapAnywhere);
    cursor.insertText(text, format(lineClass, m_log->palette()));
    cursor.insertBlock();
    cursor.endEditBlock();
    m_log->setTextCursor(cursor); // and scrolls to it
    refreshTitle();
}

void LogView::clear()
{
    m_log->clear();
    m_log->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_errors = 0;
    m_warnings = 0;
    refreshTitle();
}

void LogView::refreshTitle()
{
    m_dock->setWindowTitle(
        tr("Log  -  ERR %1 / WARN %2").arg(QString::number(m_errors), QString::number(m_warnings)));
}
