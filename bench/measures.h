#pragma once

#include <QElapsedTimer>
#include <QJsonObject>
#include <QMap>
#include <QString>

/// What the programs of this folder measure with.
namespace Measures {

/// Processor time so far, in ms; @p who is RUSAGE_SELF or RUSAGE_CHILDREN.
double cpuMs(int who);

/// Memory that this program has in use, in kB.
double residentKb();

/// What this program has allocated and not freed, in kB.
double heapKb();

/// Files, pipes and sockets that this program has open.
int openHandles();

/// Process ids of children that are alive or not waited for, with blanks between.
QString children();

} // namespace Measures

/// Adds up the wall time of each step under its name.
class StepTimes final
{
public:
    template<typename Step>
    auto time(const char *name, Step step)
    {
        QElapsedTimer clock;
        clock.start();
        auto result = step();
        m_ms[QLatin1String(name)] += static_cast<double>(clock.nsecsElapsed()) / 1e6;
        return result;
    }

    QJsonObject perFrame(int frames) const;
    double sumMs() const;

private:
    QMap<QString, double> m_ms;
};
