#include "base/childprocess.h"

#include <QProcess>

void ChildProcess::killAndWait(QProcess &process)
{
    constexpr int waitMs = 1000;
    if (process.state() == QProcess::NotRunning)
        return;
    process.kill();
    process.waitForFinished(waitMs);
}
