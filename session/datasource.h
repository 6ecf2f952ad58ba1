#pragma once

#include <QString>

/// One series of images in the archive.
struct DataSource
{
    int sourceId = -1; ///< the service's number; 0 is a valid one
    QString nickname;  ///< "AIA 171": names it in the log, on frames and in folder names
    QString path;      ///< "SDO/AIA/171": its place in the catalog
};
