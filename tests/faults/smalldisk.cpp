#include "tests/faults/smalldisk.h"

#include <QFile>
#include <QStorageInfo>

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void mountOn(const QString &path, unsigned long flags)
{
    if (mount("tmpfs", qPrintable(path), "tmpfs", flags, "mode=777,size=4m") != 0)
        qFatal("cannot mount a disk on %s", qPrintable(path));
}

/// Lets mounts of this process vanish with it.
bool enterOwnNamespace()
{
    return unshare(CLONE_NEWNS) == 0 &&
           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

} // namespace

bool SmallDisk::prepare()
{
    // A child tries it first: where only the first half works, as in a changed root, a process is
    // left that no longer finds its own executable.
    const pid_t child = fork();
    if (child == 0)
        _exit(enterOwnNamespace() ? 0 : 1);
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0 && enterOwnNamespace();
}

SmallDisk::SmallDisk()
{
    mountOn(path(), 0);
}

SmallDisk::~SmallDisk()
{
    umount2(qPrintable(path()), MNT_DETACH);
}

void SmallDisk::leave(qint64 bytes)
{
    constexpr qint64 page = 4096;
    const qint64 fill = QStorageInfo(path()).bytesFree() - (bytes + page - 1) / page * page;
    QFile ballast(path() + QStringLiteral("/ballast"));
    if (!ballast.open(QIODevice::Append | QIODevice::Unbuffered) ||
        ballast.write(QByteArray(int(qMax<qint64>(fill, 0)), 'x')) < fill)
        qFatal("cannot fill the small disk");
}

void SmallDisk::relieve()
{
    QFile::remove(path() + QStringLiteral("/ballast"));
}

void SmallDisk::makeReadOnly()
{
    mountOn(path(), MS_REMOUNT | MS_RDONLY);
}
