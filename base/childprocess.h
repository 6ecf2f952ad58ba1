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

/**
 * Deletes @p process, whose signals nobody waits for any longer, from the event loop.
 *
 * One whose child not even a kill has ended loses its parent and lives on until that end: its
 * destructor would wait for it for half a minute.
 */
void letGo(QProcess *process);

} // namespace ChildProcess
