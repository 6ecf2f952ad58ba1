#include "output/framesequence.h"

#include "base/regularfile.h"
#include "output/sessionfiles.h"

#include <QByteArray>
#include <QDir>
#include <QFile>

namespace {

const QByteArray &signature()
{
    static const QByteArray bytes = QByteArrayLiteral("\x89PNG\r\n\x1a\n");
    return bytes;
}

/// The chunk without data that every PNG ends with: length, name and checksum.
const QByteArray &lastChunk()
{
    static const QByteArray bytes = QByteArrayLiteral("\0\0\0\0IEND\xae\x42\x60\x82");
    return bytes;
}

} // namespace

bool FrameSequence::isWhole(const QString &path)
{
    QFile file(path);
    return RegularFile::open(file) && file.read(signature().size()) == signature() &&
           file.seek(file.size() - lastChunk().size()) && file.readAll() == lastChunk();
}

int FrameSequence::countWhole(const QString &folder, int count)
{
    const QDir frames(folder);
    int whole = 0;
    for (int number = 0; number < count; ++number)
        whole += isWhole(frames.filePath(SessionFiles::frame(number))) ? 1 : 0;
    return whole;
}
