#include "output/filmfile.h"

#include <QByteArray>
#include <QFile>
#include <QtEndian>

namespace {

/// The head of a box: its length and type, and, when that length is 1, the true one in 8 bytes.
constexpr int headBytes = 8;
constexpr int longHeadBytes = 16;

struct Box
{
    QByteArray type;
    qint64 length = 0; // with the head; less than a head has when it cannot be read
};

/// The box that begins where @p file stands.
Box readBox(QFile &file)
{
    const qint64 remaining = file.size() - file.pos();
    const QByteArray head = file.read(longHeadBytes);
    if (head.size() < headBytes)
        return {};
    const auto length = qFromBigEndian<quint32>(head.constData());
    const QByteArray type = head.mid(4, 4);
    if (length == 0)
        return {type, remaining}; // up to the end, however long that is
    if (length > 1)
        return {type, length};
    return {type, head.size() < longHeadBytes ? 0 : qFromBigEndian<qint64>(head.constData() + 8)};
}

} // namespace

bool FilmFile::isCutOff(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    bool hasMovie = false;
    qint64 position = 0;
    while (position < file.size()) {
        file.seek(position);
        const Box box = readBox(file);
        if (position == 0 && box.type != "ftyp")
            return false;
        if (box.length < headBytes || box.length > file.size() - position)
            return true;
        hasMovie = hasMovie || box.type == "moov";
        position += box.length;
    }
    return !hasMovie;
}
