#include "output/manifestrow.h"

#include "base/utctext.h"
#include "output/csvfields.h"
#include "output/manifestcolumns.h"

#include <QStringList>

namespace {

constexpr int metadataDigits = 15; // what a double holds of any decimal number

QString metadataText(const QJsonValue &value)
{
    if (value.isDouble())
        return QString::number(value.toDouble(), 'g', metadataDigits);
    return value.toString(); // empty for what is not a text
}

} // namespace

QString ManifestRows::toText(FrameStatus status)
{
    switch (status) {
    case FrameStatus::Ok:
        return QStringLiteral("OK");
    case FrameStatus::RejectedTime:
        return QStringLiteral("REJECTED_TIME");
    case FrameStatus::Duplicate:
        return QStringLiteral("DUPLICATE");
    case FrameStatus::CorruptImage:
        return QStringLiteral("CORRUPT_IMAGE");
    case FrameStatus::DownloadError:
        return QStringLiteral("DOWNLOAD_ERROR");
    case FrameStatus::LookupError:
        return QStringLiteral("LOOKUP_ERROR");
    }
    return {};
}

std::optional<FrameStatus> ManifestRows::frameStatus(const QStringRef &word)
{
    for (const FrameStatus status : frameStatuses) {
        if (word == toText(status))
            return status;
    }
    return std::nullopt;
}

QString ManifestRows::toLine(const ManifestRow &row)
{
    QStringList fields{
        QString::number(row.request.sourceId),
        CsvFields::quote(row.request.nickname),
        QString::number(row.request.requestIndex),
        CsvFields::quote(UtcText::toText(row.request.requestedUtc)),
        CsvFields::quote(UtcText::toText(row.actualUtc)),
        row.actualUtc.isValid() ? QString::number(row.deltaSeconds) : QString(),
        QString::number(row.toleranceSeconds),
        row.imageId >= 1 ? QString::number(row.imageId) : QString(),
        CsvFields::quote(row.file),
        CsvFields::quote(row.videoFrame),
        toText(row.status),
    };
    for (const ManifestColumns::Geometry &column : ManifestColumns::geometry)
        fields.append(metadataText(row.metadata.value(QLatin1String(column.metadataKey))));
    // One request is one row: a line break within a text would begin another.
    return fields.join(QLatin1Char(','))
               .replace(QLatin1Char('\n'), QLatin1Char(' '))
               .replace(QLatin1Char('\r'), QLatin1Char(' ')) +
           QLatin1Char('\n');
}
