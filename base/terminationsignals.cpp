#include "base/terminationsignals.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// A signal handler may call hardly any function, none of Qt: it writes a byte that the event loop
// reads.
std::array<int, 2> ends{-1, -1};

void onSignal(int number)
{
    const char byte = static_cast<char>(number);
    if (write(ends[0], &byte, 1) < 0)
        _exit(EXIT_FAILURE);
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent) : QObject(parent)
{
    std::signal(SIGXFSZ, SIG_IGN);
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return;
    auto *notifier = new QSocketNotifier(ends[1], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        if (read(ends[1], &byte, 1) == 1)
            emit received(byte);
    });
    struct sigaction action = {};
    action.sa_handler = &onSignal;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    for (const int number : {SIGTERM, SIGHUP, SIGINT})
        sigaction(number, &action, nullptr);
}

#else

TerminationSignals::TerminationSignals(QObject *parent) : QObject(parent) {}

#endif
