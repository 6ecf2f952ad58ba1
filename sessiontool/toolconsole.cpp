#include "sessiontool/toolconsole.h"

#include <cstdio>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

bool isErrorOnTerminal()
{
#ifdef Q_OS_UNIX
    return isatty(STDERR_FILENO) != 0;
#else
    return false;
#endif
}

/// Includes characters that reverse the writing direction and could disguise a name.
bool steersTerminal(QChar character)
{
    switch (character.category()) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

} // namespace

ToolConsole::ToolConsole() : m_out(stdout), m_err(stderr), m_showsProgress(isErrorOnTerminal()) {}

ToolConsole::~ToolConsole()
{
    clearProgress();
}

void ToolConsole::print(const QString &line)
{
    clearProgress();
    m_out << printable(line) << '\n';
}

void ToolConsole::printNow(const QString &line)
{
    print(line);
    m_out.flush();
}

void ToolConsole::printRaw(const QString &text)
{
    clearProgress();
    m_out << text;
}

void ToolConsole::printBytes(const QByteArray &bytes)
{
    clearProgress();
    m_out.flush();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
}

void ToolConsole::complain(const QString &sentence)
{
    clearProgress();
    m_out.flush();
    m_err << "orvik-session: " << printable(sentence) << '\n';
    m_err.flush();
}

void ToolConsole::setProgress(const QString &text)
{
    m_out.flush();
    if (!m_showsProgress)
        return;
    constexpr int shownCharacters = 78; // a longer one would break over the line's end
    m_err << "\r\033[K" << printable(text).left(shownCharacters);
    m_err.flush();
    m_hasProgress = true;
}

QString ToolConsole::printable(const QString &text)
{
    QString shown = text;
    for (QChar &character : shown) {
        if (steersTerminal(character))
            character = QLatin1Char('?');
    }
    return shown;
}

QString ToolConsole::counted(qint64 number, const char *noun)
{
    return QStringLiteral("%1 %2%3").arg(QString::number(number), QLatin1String(noun),
                                         number == 1 ? QString() : QStringLiteral("s"));
}

void ToolConsole::clearProgress()
{
    if (!m_hasProgress)
        return;
    m_err << "\r\033[K";
    m_err.flush();
    m_hasProgress = false;
}
