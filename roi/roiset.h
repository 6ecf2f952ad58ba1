#pragma once

#include <QRectF>
#include <QString>
#include <QVector>

class QJsonObject;

/// A region of interest, as rois.json keeps it.
struct Roi
{
    QString name;
    QRectF rect; ///< in widths and heights of the full frame, from its top left corner
    bool enabled = true;
    int rotation = 0; ///< degrees: 0, 90, -90 or 180
};

/// Whether rois.json keeps both alike.
bool operator==(const Roi &one, const Roi &other);

/// The regions of one session, and the file rois.json that holds them.
namespace RoiSet {

/// Characters in the longest name that can be typed; a stored one may have more.
constexpr int maxNameLength = 80;

/// The name that a region gets in a set that holds @p count of them so far.
QString defaultName(int count);

/// The regions of the object in rois.json; elements without an area are left out.
QVector<Roi> fromJson(const QJsonObject &object);

/// The object that rois.json holds; @p sessionName is the name of the session's folder.
QJsonObject toJson(const QVector<Roi> &rois, const QString &sessionName);

/**
 * The set stored in a session; empty when there is none that can be read.
 *
 * @param remark  may be null; a line for the log when there is a file, but a damaged one
 */
QVector<Roi> load(const QString &sessionDirectory, QString *remark = nullptr);

/**
 * Replaces the stored set of a session. A damaged file is kept beside it, as rois.json.bad or with
 * a number behind that.
 *
 * @param sessionDirectory  empty when none is loaded, which fails
 * @param errorText         may be null; set on failure only
 */
bool save(const QVector<Roi> &rois, const QString &sessionDirectory, QString *errorText = nullptr);

/// Path of rois.json in a session.
QString filePath(const QString &sessionDirectory);

} // namespace RoiSet
