#include "ui/statusline.h"

#include <QStatusBar>

namespace {

constexpr int tickMs = 1000; // figures that change more often cannot be read
constexpr int passingMs = 10'000;

} // namespace

StatusLine::StatusLine(QStatusBar *bar, QObject *parent) : QObject(parent), m_bar(bar)
{
    m_tick.setInterval(tickMs);
    connect(&m_tick, &QTimer::timeout, this, [this] { show(RunProgress::text(m_count)); });
    connect(bar, &QStatusBar::messageChanged, this, [this](const QString &message) {
        if (message.isEmpty()) // a menu was left, or a temporary message has ended
            m_bar->showMessage(m_text);
    });
    end();
}

void StatusLine::reset(int films)
{
    m_count = RunProgress::Count();
    m_count.films = films;
    m_beginnings = 0;
}

void StatusLine::begin()
{
    show(RunProgress::text(m_count));
    m_tick.start();
}

void StatusLine::count(int value, int maximum)
{
    if (value == 0 && ++m_beginnings == 2) {
        m_count.isPlanned = true;
        m_sincePlan.start();
    }
    m_count.done = value;
    m_count.total = maximum;
    if (m_count.isPlanned)
        m_count.elapsedMs = m_sincePlan.elapsed();
}

void StatusLine::end()
{
    m_tick.stop();
    show(tr("Ready"));
}

void StatusLine::announce(const QString &text)
{
    m_bar->showMessage(text, passingMs);
}

void StatusLine::show(const QString &text)
{
    m_text = text;
    m_bar->showMessage(text);
}
