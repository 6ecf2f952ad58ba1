#include "roi/roiset.h"

#include "base/errortext.h"
#include "base/filereplace.h"
#include "base/jsonfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <cmath>

namespace {

const QString &roisKey()
{
    static const QString key = QStringLiteral("rois");
    return key;
}

/// Also false when normalizing a negative width has overflowed.
bool hasArea(const QRectF &rect)
{
    return std::isfinite(rect.x()) && std::isfinite(rect.y()) && std::isfinite(rect.width()) &&
           std::isfinite(rect.height()) && rect.width() > 0.0 && rect.height() > 0.0;
}

Roi roiFromJson(const QJsonObject &object, int count)
{
    Roi roi;
    roi.name = object.value(QStringLiteral("name")).toString(RoiSet::defaultName(count));
    roi.rect = QRectF(object.value(QStringLiteral("x")).toDouble(),
                      object.value(QStringLiteral("y")).toDouble(),
                      object.value(QStringLiteral("width")).toDouble(),
                      object.value(QStringLiteral("height")).toDouble())
                   .normalized();
    roi.enabled = object.value(QStringLiteral("enabled")).toBool(true);
    roi.rotation = object.value(QStringLiteral("rotation")).toInt();
    return roi;
}

QJsonObject roiToJson(const Roi &roi)
{
    return {
        {QStringLiteral("name"), roi.name},
        {QStringLiteral("x"), roi.rect.x()},
        {QStringLiteral("y"), roi.rect.y()},
        {QStringLiteral("width"), roi.rect.width()},
        {QStringLiteral("height"), roi.rect.height()},
        {QStringLiteral("rotation"), roi.rotation},
        {QStringLiteral("enabled"), roi.enabled},
    };
}

bool isTaken(const QString &path)
{
    const QFileInfo file(path);
    return file.exists() || file.isSymLink();
}

/**
 * Renames a damaged rois.json, so that saving does not destroy what it holds.
 *
 * @param aside  where it is then; empty when there was nothing to move
 * @return       false when it cannot be moved
 */
bool setDamagedAside(const QString &path, QString &aside)
{
    const QFileInfo file(path);
    if (!file.isFile() || file.isSymLink() || JsonFile::load(path))
        return true;
    aside = path + QStringLiteral(".bad");
    for (int number = 2; isTaken(aside); ++number)
        aside = path + QStringLiteral(".bad%1").arg(number);
    return QFile::rename(path, aside);
}

/// QSaveFile would write through a link, wherever it leads. Renaming replaces the link itself, and
/// only after everything has been written.
JsonFile::SaveResult saveOverLink(const QString &path, const QJsonObject &object)
{
    const QString fresh = path + QStringLiteral(".new");
    QFile::remove(fresh); // may be a link as well
    const JsonFile::SaveResult result = JsonFile::save(fresh, object);
    if (result != JsonFile::SaveResult::Saved || FileReplace::replace(path, fresh))
        return result;
    QFile::remove(fresh);
    return JsonFile::SaveResult::CannotCommit;
}

} // namespace

bool operator==(const Roi &one, const Roi &other)
{
    return one.name == other.name && one.rect == other.rect && one.enabled == other.enabled &&
           one.rotation == other.rotation;
}

QString RoiSet::defaultName(int count)
{
    return QStringLiteral("ROI %1").arg(count + 1);
}

QVector<Roi> RoiSet::fromJson(const QJsonObject &object)
{
    QVector<Roi> rois;
    const QJsonArray elements = object.value(roisKey()).toArray();
    for (const QJsonValue &element : elements) {
        if (!element.isObject())
            continue;
        const Roi roi = roiFromJson(element.toObject(), rois.size());
        if (hasArea(roi.rect))
            rois.append(roi);
    }
    return rois;
}

QJsonObject RoiSet::toJson(const QVector<Roi> &rois, const QString &sessionName)
{
    QJsonArray elements;
    for (const Roi &roi : rois)
        elements.append(roiToJson(roi));
    return {
        {QStringLiteral("application"), QStringLiteral("Orvik")},
        {QStringLiteral("coordinateSystem"), QStringLiteral("normalized-full-frame")},
        {QStringLiteral("formatVersion"), 2},
        {roisKey(), elements},
        {QStringLiteral("session"), sessionName},
    };
}

QVector<Roi> RoiSet::load(const QString &sessionDirectory, QString *remark)
{
    const QString path = filePath(sessionDirectory);
    const std::optional<QJsonObject> object = JsonFile::load(path);
    if (!object && remark && QFileInfo(path).isFile())
        *remark = QStringLiteral("WARNING rois.json of this session is damaged: no region was "
                                 "loaded. The file is kept as rois.json.bad when regions are "
                                 "saved.");
    return object ? fromJson(*object) : QVector<Roi>();
}

bool RoiSet::save(const QVector<Roi> &rois, const QString &sessionDirectory, QString *errorText)
{
    if (sessionDirectory.isEmpty())
        return ErrorText::fail(errorText, QStringLiteral("No session is loaded."));

    const QString path = filePath(sessionDirectory);
    QString damaged;
    if (!setDamagedAside(path, damaged))
        return ErrorText::fail(
            errorText, QStringLiteral("The damaged rois.json cannot be kept as:\n%1").arg(damaged));
    const QJsonObject object = toJson(rois, QDir(sessionDirectory).dirName());
    const JsonFile::SaveResult result =
        QFileInfo(path).isSymLink() ? saveOverLink(path, object) : JsonFile::save(path, object);
    if (result == JsonFile::SaveResult::Saved)
        return true;
    if (!damaged.isEmpty())
        QFile::rename(damaged, path);
    return ErrorText::fail(errorText,
                           result == JsonFile::SaveResult::CannotOpen
                               ? QStringLiteral("Cannot create rois.json in the session directory.")
                               : QStringLiteral("Cannot commit rois.json."));
}

QString RoiSet::filePath(const QString &sessionDirectory)
{
    return QDir(sessionDirectory).filePath(QStringLiteral("rois.json"));
}
