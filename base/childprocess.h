#pragma once

class QProcess;

namespace ChildProcess {

/**
 * Kills @p process unless it has ended, and waits up to a second for its end.
 *
 * Its last signals are sent meanwhile. A killed child is gone long before, but one that hangs on a
 * disk must not hold the program.
 */
void killAndWait(QProcess &process);

} // namespace ChildProcess
