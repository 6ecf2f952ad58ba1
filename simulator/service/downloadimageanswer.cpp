#include "simulator/archive/archive.h"
#include "simulator/archive/imagegeometry.h"
#include "simulator/archive/servicetime.h"
#include "simulator/service/endpoints.h"
#include "simulator/service/picturestore.h"

#include <QBuffer>
#include <QDateTime>
#include <QImage>
#include <QLocale>

#include <algorithm>

namespace Simulator {

namespace {

constexpr int widestPx = 4096;
constexpr int noSuchImageErrno = 24;
constexpr int fatalErrno = 255;

/// Width of the rendering: asked for, or by scale, or native; 0 when the service would crash.
int outputWidth(const ImageGeometry &geometry, int width, bool hasWidth, double scale,
                bool hasScale)
{
    double wanted = geometry.widthPx;
    if (hasWidth && width >= 0)
        wanted = width;
    else if (!hasWidth && hasScale)
        wanted = scale > 0.0 ? geometry.widthPx * geometry.arcsecPerPx / scale : 0.0;
    return qRound(std::min({wanted, double(geometry.widthPx), double(widestPx)}));
}

/// "2024_05_01__00_00_09__SDO_AIA_171_full_image_4.png.png"
QString fileName(const ArchiveSource &source, const ArchiveImage &image, const QString &type)
{
    const QString time =
        QLocale::c().toString(QDateTime::fromSecsSinceEpoch(image.unixTime, Qt::UTC),
                              QStringLiteral("yyyy_MM_dd__HH_mm_ss"));
    QString name = source.path;
    name.replace(QLatin1Char('/'), QLatin1Char('_')).replace(QLatin1Char(' '), QLatin1Char('_'));
    return QStringLiteral("%1__%2_full_image_4.%3.%3").arg(time, name, type);
}

QByteArray httpDate(qint64 unixTime)
{
    return QLocale::c()
        .toString(QDateTime::fromSecsSinceEpoch(unixTime, Qt::UTC),
                  QStringLiteral("ddd, dd MMM yyyy HH:mm:ss 'GMT'"))
        .toLatin1();
}

QByteArray converted(const QByteArray &png, const QString &type)
{
    if (type == QLatin1String("png"))
        return png;
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImage::fromData(png, "PNG").save(&buffer, type.toLatin1().constData());
    return buffer.data();
}

Answer imageAnswer(const QByteArray &body, const QString &type, const QString &name,
                   qint64 unixTime)
{
    Answer answer;
    answer.contentType =
        "image/" + (type == QLatin1String("jpg") ? "jpeg" : type.toLatin1()) + "; charset=binary";
    answer.body = body;
    answer.headers = {{"Last-Modified", httpDate(unixTime)},
                      {"Cache-Control", "public, max-age=2592000"},
                      {"Content-Disposition", "inline; filename=\"" + name.toUtf8() + '"'}};
    return answer;
}

} // namespace

Answer downloadImageAnswer(const Archive &archive, PictureStore &pictures, const Query &query,
                           MissingBlock block)
{
    QueryReader reader(query);
    const qint64 id = reader.longInteger(QStringLiteral("id"));
    const int width = reader.integer(QStringLiteral("width"), 0);
    const double scale = reader.decimal(QStringLiteral("scale"), 0.0);
    const QString type = query.value(QStringLiteral("type"), QStringLiteral("png"));
    if (!QStringList{QStringLiteral("png"), QStringLiteral("jpg"), QStringLiteral("webp")}.contains(
            type))
        return pageOfError(QStringLiteral("Invalid image type \"%1\".").arg(type));
    if (!reader.complaint().isEmpty())
        return pageOfError(reader.complaint());

    const std::optional<ArchiveImage> image = archive.imageOf(id);
    if (!image)
        return errorObject(QStringLiteral("Unable to find an image with id %1.").arg(id),
                           noSuchImageErrno);
    const ArchiveSource &source = archive.sourceOf(*image);
    const int widthPx =
        outputWidth(geometryOf(source, *image), width, query.contains(QStringLiteral("width")),
                    scale, query.contains(QStringLiteral("scale")));
    if (widthPx < 1)
        return errorObject(QStringLiteral("/var/www/api/src/Image/SubFieldImage.php:214 - "
                                          "Division by zero"),
                           fatalErrno);
    const QByteArray png =
        block == MissingBlock::None
            ? pictures.png(*image, widthPx)
            : pictures.pngWithMissingBlock(*image, widthPx, block == MissingBlock::Transparent);
    return imageAnswer(converted(png, type), type, fileName(source, *image, type), image->unixTime);
}

} // namespace Simulator
