// orvik-session: reports on, verifies, recovers and films stored sessions in a terminal.

#include "sessiontool/toolcommands.h"
#include "sessiontool/toolconsole.h"
#include "sessiontool/toolorder.h"

#include <QCoreApplication>

#include <csignal>

namespace {

/// All that is said has been written when this returns.
ToolEnd run(const ToolRequest &request)
{
    ToolConsole console;
    if (!request.mistake.isEmpty()) {
        console.complain(request.mistake);
        return {ExitCode::WrongUsage};
    }
    if (request.order)
        return ToolCommands::run(*request.order, console);
    console.printRaw(request.text);
    return {};
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const ToolEnd end = run(ToolOrders::parse(QCoreApplication::arguments()));
    if (end.signalNumber != 0)
        std::raise(end.signalNumber); // so that Ctrl+C also ends the loop of a shell around it
    return static_cast<int>(end.exitCode);
}
