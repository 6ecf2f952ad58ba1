#include "bench/measures.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <numeric>

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

double Measures::cpuMs(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    const auto ms = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

double Measures::residentKb()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0.0;
    const double pages = file.readAll().split(' ').value(1).toDouble();
    return pages * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024;
}

double Measures::heapKb()
{
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd) / 1024;
}

int Measures::openHandles()
{
    const QDir handles(QStringLiteral("/proc/self/fd"));
    const int own = 1; // by which the folder is read
    return handles.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size() - own;
}

QString Measures::children()
{
    QFile file(
        QStringLiteral("/proc/self/task/%1/children").arg(QCoreApplication::applicationPid()));
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()).trimmed()
                                          : QStringLiteral("unknown to this system");
}

QJsonObject StepTimes::perFrame(int frames) const
{
    QJsonObject json;
    for (auto step = m_ms.begin(); step != m_ms.end(); ++step)
        json.insert(step.key(), step.value() / frames);
    return json;
}

double StepTimes::sumMs() const
{
    return std::accumulate(m_ms.begin(), m_ms.end(), 0.0);
}
