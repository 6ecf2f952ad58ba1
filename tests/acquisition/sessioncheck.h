#pragma once

#include <QJsonObject>
#include <QStringList>

/// What a session left on disk, judged as by somebody who does not know how it went.
struct SessionCheck
{
    static SessionCheck of(const QString &sessionDirectory);

    QStringList faults; ///< half a row, a row whose picture is missing or half, counts that differ
    QString statuses;   ///< of the rows, in file order, with blanks between them
    QStringList strays; ///< files that no row names, besides whole films and the session's own
    int rows = 0;
    int pictures = 0;       ///< named in rows, and whole
    QJsonObject descriptor; ///< empty when there is none
};
