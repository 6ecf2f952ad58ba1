#pragma once

#include "sessiontool/exitcode.h"

class ToolConsole;
struct ToolOrder;

/// How the program ends.
struct ToolEnd
{
    ExitCode exitCode = ExitCode::Fine;
    int signalNumber = 0; ///< of the signal that interrupted it; 0 when none has
};

namespace ToolCommands {

/// Carries out @p order and prints the result.
ToolEnd run(const ToolOrder &order, ToolConsole &console);

} // namespace ToolCommands
