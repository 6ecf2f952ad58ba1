#pragma once

#include <QTemporaryDir>

/// A small disk to be filled to the brim; only this process and its children see it.
class SmallDisk
{
public:
    /// Has to come first, in main(); false when this machine or this user may not mount a disk.
    static bool prepare();

    SmallDisk();
    ~SmallDisk();

    QString path() const { return m_folder.path(); }
    /// Fills all but @p bytes, rounded up to whole pages, of the room there is.
    void leave(qint64 bytes);
    /// Takes out what leave() has put in.
    void relieve();
    void makeReadOnly();

private:
    QTemporaryDir m_folder;
};
