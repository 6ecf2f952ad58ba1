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

void ChildProcess::letGo(QProcess *process)
{
    if (process->state() == QProcess::NotRunning) {
        process->deleteLater();
        return;
    }
    process->setParent(nullptr);
    QObject::connect(process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), process,
                     &QObject::deleteLater);
}
