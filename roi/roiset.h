#pragma once

#include <QRectF>
#include <QString>
#include <QVector>

class QJsonObject;

/// A region of interest, as stored in rois.json.
struct Roi
{
    QString name;
    QRectF rect; ///< in widths and heights of the full frame, from its top left corner
    bool enabled = true;
    int rotation = 0; ///< degrees: 0, 90, -90 or 180
};

/// Whether both would be stored as the same.
bool operator==(const Roi &one, const Roi &other);

/// The regions of one session, and the file rois.json that holds them.
namespace RoiSet {

/// Characters in the longest name that can be typed; a stored one may have more.
constexpr int maxNameLength = 80;

/// The default name of a new region in a set that has @p count regions so far.
QString defaultName(int count);

/// Reads the regions from the object in rois.json, without elements that have no area.
QVector<Roi> fromJson(const QJsonObject &object);

/// The object to be stored in rois.json; @p sessionName is the name of the session's folder.
QJsonObject toJson(const QVector<Roi> &rois, const QString &sessionName);

/**
 * The set stored in a session; empty when it is missing or cannot be read.
 *
 * @param remark  may be null; a line for the log when there is a file, but a damaged one
 */
QVector<Roi> load(const QString &sessionDirectory, QString *remark = nullptr);

/**
 * Replaces the stored set of a session. A damaged file is kept beside it, as rois.json.bad,
 * with a number appended if that name is taken.
 *
 * @param sessionDirectory  empty when no session is loaded; saving then fails
 * @param errorText         may be null; set on failure only
 */
bool save(const QVector<Roi> &rois, const QString &sessionDirectory, QString *errorText = nullptr);

/// Path of rois.json in a session.
QString filePath(const QString &sessionDirectory);

} // namespace RoiSet
