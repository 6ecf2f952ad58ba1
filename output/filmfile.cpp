#include "output/filmfile.h"

#include "base/regularfile.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QtEndian>

#include <algorithm>
#include <initializer_list>

namespace {

/// The head of a box: length and type, followed by a length of 8 bytes when the first one is 1.
constexpr int headBytes = 8;
constexpr int longHeadBytes = 16;
constexpr int typeOffset = 4;
constexpr int maxBoxes = 10'000; // ours have about thirty

/// Bytes of a file; the end is exclusive.
struct Range
{
    qint64 begin = 0;
    qint64 end = 0;
};

struct Box
{
    QByteArray type;
    Range content;
};

/// Reads boxes and their contents; lengths are checked against what encloses them.
class BoxReader final
{
public:
    explicit BoxReader(QFile &file) : m_file(file), m_size(file.size()) {}

    Range whole() const { return {0, m_size}; }
    /// Whether the limit of boxes has been exceeded.
    bool gaveUp() const { return m_boxes > maxBoxes; }

    /// The box at the beginning of @p range; nothing when it does not fit.
    std::optional<Box> firstBox(const Range &range);
    /// The content of the box at a path of types below @p range, taking the first of each type.
    std::optional<Range> find(std::initializer_list<const char *> types, Range range);
    /// Up to @p count bytes of @p range.
    QByteArray bytes(const Range &range, qint64 offset, qint64 count);

private:
    QFile &m_file;
    const qint64 m_size; // asked once: each call goes to the file system
    int m_boxes = 0;
};

std::optional<Box> BoxReader::firstBox(const Range &range)
{
    const QByteArray head = bytes(range, 0, longHeadBytes);
    if (++m_boxes > maxBoxes || head.size() < headBytes)
        return std::nullopt;
    const qint64 room = range.end - range.begin;
    qint64 length = qFromBigEndian<quint32>(head.constData());
    int contentOffset = headBytes;
    if (length == 0) {
        length = room; // reaches to the end
    } else if (length == 1) {
        contentOffset = longHeadBytes;
        length =
            head.size() < longHeadBytes ? 0 : qFromBigEndian<qint64>(head.constData() + headBytes);
    }
    if (length < contentOffset || length > room)
        return std::nullopt;
    return Box{head.mid(typeOffset, 4), {range.begin + contentOffset, range.begin + length}};
}

std::optional<Range> BoxReader::find(std::initializer_list<const char *> types, Range range)
{
    for (const char *const type : types) {
        std::optional<Box> box = firstBox(range);
        while (box && box->type != type) {
            range.begin = box->content.end;
            box = firstBox(range);
        }
        if (!box)
            return std::nullopt;
        range = box->content;
    }
    return range;
}

QByteArray BoxReader::bytes(const Range &range, qint64 offset, qint64 count)
{
    const qint64 begin = range.begin + offset;
    if (!m_file.seek(begin))
        return {};
    return m_file.read(std::clamp<qint64>(range.end - begin, 0, count));
}

/// Number of pictures in a track, from its table of sample sizes; nothing when it is no video.
std::optional<qint64> picturesOfTrack(BoxReader &reader, const Range &track)
{
    constexpr int handlerOffset = 8; // after version, flags and an unused number
    const std::optional<Range> handler = reader.find({"mdia", "hdlr"}, track);
    if (!handler || reader.bytes(*handler, handlerOffset, 4) != "vide")
        return std::nullopt;
    constexpr int countOffset = 8; // after version, flags and the common size
    const std::optional<Range> sizes = reader.find({"mdia", "minf", "stbl", "stsz"}, track);
    const QByteArray count = sizes ? reader.bytes(*sizes, countOffset, 4) : QByteArray();
    return count.size() < 4 ? 0 : qFromBigEndian<quint32>(count.constData());
}

qint64 picturesOfMovie(BoxReader &reader, Range movie)
{
    while (const std::optional<Box> box = reader.firstBox(movie)) {
        movie.begin = box->content.end;
        if (box->type != "trak")
            continue;
        if (const std::optional<qint64> pictures = picturesOfTrack(reader, box->content))
            return *pictures;
    }
    return 0;
}

FilmFile::Content contentOf(BoxReader &reader)
{
    Range rest = reader.whole();
    std::optional<Range> movie;
    while (rest.begin < rest.end) {
        const std::optional<Box> box = reader.firstBox(rest);
        if (!box)
            return {true, 0};
        if (box->type == "moov")
            movie = box->content;
        rest.begin = box->content.end;
    }
    return movie ? FilmFile::Content{false, picturesOfMovie(reader, *movie)}
                 : FilmFile::Content{true, 0};
}

} // namespace

std::optional<FilmFile::Content> FilmFile::read(const QString &path)
{
    QFile file(path);
    if (!RegularFile::open(file))
        return std::nullopt;
    BoxReader reader(file);
    const Range whole = reader.whole();
    if (whole.end > 0 && reader.bytes(whole, typeOffset, 4) != "ftyp")
        return std::nullopt;
    const Content content = contentOf(reader);
    return reader.gaveUp() ? std::nullopt : std::make_optional(content);
}

bool FilmFile::isCutOff(const QString &path)
{
    const std::optional<Content> content = read(path);
    return content && content->isCutOff;
}

QString FilmFile::flaw(const QString &path, qint64 pictures)
{
    if (!QFileInfo::exists(path))
        return QStringLiteral("there is no film.");
    const std::optional<Content> content = read(path);
    if (!content || (!content->isCutOff && content->pictures == pictures))
        return {};
    if (content->isCutOff)
        return QStringLiteral("the film is cut off. Is the disk full?");
    return QStringLiteral("the film shows %1 of %2 pictures.").arg(content->pictures).arg(pictures);
}
