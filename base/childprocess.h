#pragma once

class QProcess;

namespace ChildProcess {

/**
 * Kills @p process unless it has ended, and waits up to a second for its end.
 *
 * Its last signals are delivered before this returns. A killed child ends at once, unless it hangs
 * in a system call; the program must not hang with it.
 */
void killAndWait(QProcess &process);

/**
 * Deletes @p process, which is no longer needed, from the event loop.
 *
 * If its child has survived a kill, the object is deleted only when the child ends, and has no
 * parent until then: the destructor of QProcess would block for half a minute.
 */
void letGo(QProcess *process);

} // namespace ChildProcess
