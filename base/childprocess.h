#pragma once

class QProcess;

namespace ChildProcess {

/**
 * Kills @p process unless it has ended, and waits up to a second for its end.
 *
 * Its last signals are delivered meanwhile. A killed child ends at once, unless it hangs in a
 * system call; the program must not hang with it.
 */
void killAndWait(QProcess &process);

/**
 * Deletes @p process, which is no longer needed, from the event loop.
 *
 * If its child is still running in spite of a kill, it is deleted only when that ends, and has no
 * parent until then: the destructor of QProcess would block for half a minute.
 */
void letGo(QProcess *process);

} // namespace ChildProcess
