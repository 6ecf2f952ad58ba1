#include "tests/ui/wholesession.h"

#include "imaging/frameannotation.h"
#include "tests/acquisition/acquisitionfixture.h"
#include "tests/support/literals.h"

#include <QImage>
#include <QtTest>

using Simulator::ArchiveSource;

namespace {

/// An image every @p spacingSeconds, of a shape and a scale that no other datasource has.
ArchiveSource source(const DataSource &named, int spacingSeconds,
                     const char *start = "2010-06-02 00:00:00")
{
    ArchiveSource made = AcquisitionFixture::regular(named, start, spacingSeconds);
    made.widthPx = 4096 - 32 * spacingSeconds / 10;
    made.heightPx = made.widthPx * 3 / 4;
    made.rsunPx = 600 + 3 * spacingSeconds;
    made.refPixelX = made.widthPx / 2.0 + 20;
    made.refPixelY = made.heightPx / 2.0 - 30;
    return made;
}

/// What a program prints; its options have no blanks within, its last argument may have some.
QByteArray outputOf(const QString &command, const QString &last)
{
    QStringList words = command.split(QLatin1Char(' '));
    QProcess process;
    process.start(words.takeFirst(), words << last);
    process.waitForFinished();
    return process.readAllStandardOutput();
}

/// How far two pictures are apart at the worst place, 0 to 255. What an encoder does to single
/// pixels evens out over four of them; a digit that differs does not.
int difference(const QImage &one, const QImage &other)
{
    const auto coarse = [](const QImage &image) {
        return image.scaled(image.size() / 2, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    const QImage a = coarse(one);
    const QImage b = coarse(other);
    int worst = a.size() == b.size() ? 0 : 255;
    for (int i = 0; worst < 255 && i < a.width() * a.height(); ++i) {
        const QPoint pixel(i % a.width(), i / a.width());
        worst = std::max(worst, std::abs(qGray(a.pixel(pixel)) - qGray(b.pixel(pixel))));
    }
    return worst;
}

QString expected(const char *name)
{
    return WholeSession::contentOf(QFINDTESTDATA("wholerun/"_s + QLatin1String(name)));
}

} // namespace

std::shared_ptr<const Simulator::Archive> WholeSession::archive()
{
    return std::make_shared<const Simulator::Archive>(QVector<ArchiveSource>{
        source({10, "AIA 171"_s, "SDO/AIA/171"_s}, 400),               // asked too often
        source({19, "HMI <b>Mag</b>"_s, "SDO/HMI/magnetogram"_s}, 45), // not ticked
        source({1, "EIT 195"_s, "SOHO/EIT/195"_s}, 30),                // its probe fails
        source({4, "LASCO C2"_s, "SOHO/LASCO/C2/white-light"_s}, 50),  // at times too far off
        source({2003, "GOES-R SUVI 195"_s, "GOES/SUVI/195"_s}, 240, "2010-06-02 00:00:41")});
}

QString WholeSession::contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll())
                                          : "cannot open "_s + path;
}

QString WholeSession::shapeOf(const QString &film)
{
    return QString::fromLatin1(outputOf("ffprobe -v error -count_frames -of csv=p=0 -show_entries "
                                        "stream=width,height,r_frame_rate,nb_read_frames"_s,
                                        film)
                                   .trimmed());
}

void WholeSession::readRows()
{
    const QStringList lines =
        expected("manifest.csv").remove(QLatin1Char('"')).split(QLatin1Char('\n'));
    for (int i = 1; i + 1 < lines.size(); ++i) {
        const QStringList fields = lines.at(i).split(QLatin1Char(','));
        const QByteArray answer =
            ask("/getClosestImage/?date=%1&sourceId=%2"_s.arg(fields.at(3), fields.at(0)));
        m_rows.append({fields.at(1), QDateTime::fromString(fields.at(3), Qt::ISODate),
                       QDateTime::fromString(fields.at(4), Qt::ISODate), fields.at(8),
                       QJsonDocument::fromJson(answer).object()});
    }
}

QByteArray WholeSession::ask(const QString &question) const
{
    return outputOf("curl -sS"_s, apiBase + question);
}

QVector<WholeSession::Row> WholeSession::framesIn(const QString &folder) const
{
    QVector<Row> rows;
    std::copy_if(m_rows.cbegin(), m_rows.cend(), std::back_inserter(rows), [&](const Row &row) {
        return !row.file.isEmpty() && row.file.startsWith(folder);
    });
    return rows;
}

QString WholeSession::completedUtc() const
{
    const QString session = contentOf(file("session.json"_s));
    return session.section("\"completedUtc\": \""_s, 1).section(QLatin1Char('"'), 0, 0);
}

/// @p text with names in the place of what differs from run to run.
QString WholeSession::named(QString text) const
{
    static const QRegularExpression chatter(
        "(?<=\\.mp4\n)(?!Video|FFMPEG).*?(?=Video completed|FFMPEG ERROR)"_s,
        QRegularExpression::DotMatchesEverythingOption);
    text.remove(chatter)
        .replace(directory, "SESSION"_s)
        .replace(output, "OUTPUT"_s)
        .replace(TestFolder::path({}), "APPLICATION"_s)
        .replace(apiBase, "API"_s)
        .replace(completedUtc(), "NOW"_s);
    for (const Row &row : m_rows) {
        QStringList geometry;
        for (const char *key : geometryKeys)
            geometry += QString::number(row.number(key), 'g', 15);
        text.replace(geometry.join(QLatin1Char(',')), "geometry of "_s + row.nickname);
        text.replace(row.answer["id"_s].toString(),
                     row.nickname + row.actualUtc.toString("@HH:mm:ss"_s));
    }
    return text;
}

void WholeSession::compare(const QString &text, const char *name) const
{
    const QStringList found = named(text).split(QLatin1Char('\n'));
    const QStringList lines = expected(name).split(QLatin1Char('\n'));
    for (int i = 0; i < std::min(found.size(), lines.size()); ++i)
        QCOMPARE(found.at(i), lines.at(i));
    QCOMPARE(found.size(), lines.size());
}

void WholeSession::expectFilm(const QString &source, const char *region, const char *shape,
                              int rotation, bool scale) const
{
    QVector<QImage> pictures;
    const QVector<Row> rows = framesIn(source);
    for (const Row &row : rows) {
        const auto picture = [&](const QImage &upright, double kmPerPixel) {
            QImage turned = upright.transformed(QTransform().rotate(-rotation));
            drawFrameAnnotations(turned, row.actualUtc, row.nickname, !scale, !scale, scale,
                                 kmPerPixel);
            return turned;
        };
        const QImage frame = QImage(file(row.file)).convertToFormat(QImage::Format_RGB32);
        const QImage cut = picture(frame.copy(64, 24, 160, 96), row.kmPerPixel());
        if (scale && pictures.isEmpty()) {
            const QImage whole =
                frame.scaled(160, 96, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
            pictures = {picture(whole, row.kmPerPixel() * 192 / 96), cut};
        }
        pictures += cut;
    }
    const QString film = file(
        "%1_20240501_060007/%1_20240501_060007__ROI_%2.mp4"_s.arg(source, QLatin1String(region)));
    QCOMPARE(shapeOf(film), "%1,%2"_s.arg(QLatin1String(shape)).arg(pictures.size()));
    const QString strip = output + "/strip.png"_s; // one below the other
    outputOf("ffmpeg -v error -y -i %1 -vf tile=1x%2"_s.arg(film).arg(pictures.size()), strip);
    const QSize size = pictures.constFirst().size();
    for (int i = 0; i < pictures.size(); ++i) {
        const QRect place(QPoint(0, i * size.height()), size);
        const int found = difference(QImage(strip).copy(place), pictures.at(i));
        QVERIFY2(found < 16, // a stamp that is a second off makes 25
                 qPrintable("%1, picture %2: %3"_s.arg(film).arg(i).arg(found)));
    }
}
