#include "simulator/archive/archive.h"
#include "simulator/archive/imagegeometry.h"
#include "simulator/archive/servicetime.h"
#include "simulator/service/endpoints.h"
#include "simulator/service/jsontext.h"

#include <cmath>

namespace Simulator {

namespace {

constexpr int noDataErrno = 10;

/// Writes the numbers of the answer, as texts when asked to.
class ClosestImageWriter
{
public:
    explicit ClosestImageWriter(ClosestImageForm form) : m_form(form) {}

    JsonText &json() { return m_json; }

    void number(const char *name, double value)
    {
        m_json.key(QLatin1String(name));
        if (m_form == ClosestImageForm::NumericStrings)
            m_json.value(QString::fromLatin1(numberText(value)));
        else
            m_json.value(value);
    }

    void id(qint64 imageId)
    {
        const QString key = QStringLiteral("id");
        switch (m_form) {
        case ClosestImageForm::NumberId:
            m_json.member(key, imageId);
            break;
        case ClosestImageForm::ZeroId:
            m_json.member(key, QStringLiteral("0"));
            break;
        case ClosestImageForm::WordId:
            m_json.member(key, QStringLiteral("unknown"));
            break;
        case ClosestImageForm::NullId:
            m_json.key(key).null();
            break;
        case ClosestImageForm::MissingId:
            break;
        case ClosestImageForm::Usual:
        case ClosestImageForm::NumericStrings:
        case ClosestImageForm::NoRsun:
            m_json.member(key, QString::number(imageId));
            break;
        }
    }

private:
    JsonText m_json;
    ClosestImageForm m_form;
};

/// Only the X-ray telescope's frames carry a pointing of their own.
void writePointing(JsonText &json, const ArchiveSource &source, const ImageGeometry &geometry)
{
    json.key(QStringLiteral("sunCenterOffsetParams"));
    if (!source.path.startsWith(QLatin1String("Hinode/XRT"))) {
        json.beginArray().endArray();
        return;
    }
    const auto text = [](double value) { return QString::number(value, 'f', 4); };
    const double xCentre = (geometry.widthPx / 2.0 + 0.5 - geometry.refPixelX);
    const double yCentre = (geometry.heightPx / 2.0 + 0.5 - geometry.refPixelY);
    json.beginObject()
        .member(QStringLiteral("XCEN"), text(xCentre * geometry.arcsecPerPx))
        .member(QStringLiteral("YCEN"), text(yCentre * geometry.arcsecPerPx))
        .member(QStringLiteral("CDELT1"), text(geometry.arcsecPerPx))
        .member(QStringLiteral("CDELT2"), text(geometry.arcsecPerPx))
        .endObject();
}

QByteArray closestImageText(const Archive &archive, const ArchiveImage &image,
                            ClosestImageForm form, int dateShiftSeconds)
{
    const ArchiveSource &source = archive.sourceOf(image);
    const ImageGeometry geometry = geometryOf(source, image);
    ClosestImageWriter writer(form);
    writer.json().beginObject();
    writer.id(archive.idOf(image));
    writer.json()
        .member(QStringLiteral("date"), archiveTimeText(image.unixTime + dateShiftSeconds))
        .member(QStringLiteral("name"), source.nickname);
    writer.number("scale", geometry.arcsecPerPx);
    writer.number("scaleCorrection", double(astronomicalUnitM) / double(geometry.sunDistanceM));
    writer.number("width", geometry.widthPx);
    writer.number("height", geometry.heightPx);
    writer.number("refPixelX", geometry.refPixelX);
    writer.number("refPixelY", geometry.refPixelY);
    writer.number("offsetX", 0);
    writer.number("offsetY", 0);
    writer.number("rotation", 0);
    if (form != ClosestImageForm::NoRsun)
        writer.number("rsun", std::round(geometry.rsunPx * 1000.0) / 1000.0);
    writer.number("dsun", double(geometry.sunDistanceM));
    writePointing(writer.json(), source, geometry);
    writer.number("layeringOrder", source.layeringOrder);
    return writer.json().endObject().text();
}

} // namespace

Answer closestImageAnswer(const Archive &archive, const Query &query, ClosestImageForm form,
                          int dateShiftSeconds)
{
    QueryReader reader(query);
    const qint64 time = reader.time(QStringLiteral("date"));
    const int sourceId = reader.integer(QStringLiteral("sourceId"));
    if (!reader.complaint().isEmpty())
        return pageOfError(reader.complaint());

    const std::optional<ArchiveImage> image = archive.nearest(sourceId, time);
    if (!image) {
        const ArchiveSource *source = archive.find(sourceId);
        return errorObject(
            QStringLiteral("No data of the requested type (%1) are currently available.")
                .arg(source ? source->nickname : QString()),
            noDataErrno);
    }
    return jsonAnswer(closestImageText(archive, *image, form, dateShiftSeconds));
}

} // namespace Simulator
