#include "simulator/archive/archive.h"
#include "simulator/service/endpoints.h"
#include "simulator/service/picturestore.h"
#include "simulator/service/query.h"

namespace Simulator {

namespace {

constexpr int noSuchImageErrno = 24;
constexpr int fatalErrno = 255;

} // namespace

Answer downloadImageAnswer(const Archive &archive, PictureStore &pictures, const QUrlQuery &query)
{
    QueryReader reader(query);
    const qint64 id = reader.integer(QStringLiteral("id"));
    const qint64 width = reader.integer(QStringLiteral("width"), -1);
    const QString type = query.queryItemValue(QStringLiteral("type")).toLower();
    if (!reader.complaint().isEmpty())
        return pageOfError(reader.complaint());
    if (!type.isEmpty() && type != QLatin1String("png"))
        return pageOfError(QStringLiteral("Invalid value for type. This archive sends png only."));

    const std::optional<ArchiveImage> image = archive.imageOf(id);
    if (!image)
        return errorObject(QStringLiteral("Unable to find an image with id %1.").arg(id),
                           noSuchImageErrno);
    if (width == 0)
        return errorObject(QStringLiteral("/var/www/api/src/Image/SubFieldImage.php:214 - "
                                          "Division by zero"),
                           fatalErrno);
    // Nothing is ever enlarged, and a negative width means the native one.
    const int native = archive.sourceOf(*image).widthPx;
    const int widthPx = width < 0 ? native : static_cast<int>(std::min<qint64>(width, native));
    return {200, "image/png; charset=binary", pictures.png(*image, widthPx)};
}

} // namespace Simulator
