#include "demo/terminal.h"

#include "base/loglineclass.h"

#include <algorithm>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int barWidth = 30; // characters

int terminalWidth()
{
    winsize size{};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : 80;
}

/// The look of a line in the log view, as a 24-bit escape sequence; empty for a plain line.
QString colourOf(LogLineClass::LineClass lineClass)
{
    const std::optional<QRgb> colour = LogLineClass::colour(lineClass);
    if (!colour)
        return {};
    const QString sequence =
        QStringLiteral("38;2;%1;%2;%3m")
            .arg(QString::number(qRed(*colour)), QString::number(qGreen(*colour)),
                 QString::number(qBlue(*colour)));
    return (LogLineClass::isBold(lineClass) ? QStringLiteral("\033[1;") : QStringLiteral("\033[")) +
           sequence;
}

} // namespace

Terminal::Terminal()
    : m_out(stdout)
    , m_isTerminal(isatty(STDOUT_FILENO) != 0)
    , m_hasColours(m_isTerminal && qEnvironmentVariableIsEmpty("NO_COLOR"))
{}

void Terminal::logLine(const QString &text)
{
    // ffmpeg returns to the start of the line for each of its own reports of progress.
    QString line = text;
    line.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    const QString colour = m_hasColours ? colourOf(LogLineClass::classify(text)) : QString();
    printAboveProgress(colour.isEmpty() ? line : colour + line + QStringLiteral("\033[0m"));
}

void Terminal::print(const QString &text)
{
    printAboveProgress(text);
}

void Terminal::setState(const QString &text)
{
    m_state = text;
    drawProgress();
}

void Terminal::setProgress(int value, int maximum)
{
    m_value = value;
    m_maximum = std::max(maximum, 1);
    m_showsProgress = m_isTerminal;
    drawProgress();
}

void Terminal::endProgress()
{
    m_showsProgress = false;
    if (m_isTerminal)
        m_out << "\r\033[K" << Qt::flush;
}

void Terminal::printAboveProgress(const QString &text)
{
    if (m_showsProgress)
        m_out << "\r\033[K";
    m_out << text << '\n';
    drawProgress();
    m_out.flush();
}

void Terminal::drawProgress()
{
    if (!m_showsProgress)
        return;
    const int filled = static_cast<int>(static_cast<qint64>(barWidth) * m_value / m_maximum);
    const QString line =
        QStringLiteral("[%1%2] %3/%4  %5")
            .arg(QString(filled, QLatin1Char('#')), QString(barWidth - filled, QLatin1Char('.')),
                 QString::number(m_value), QString::number(m_maximum), m_state);
    m_out << "\r\033[K" << line.left(terminalWidth() - 1) << Qt::flush;
}
