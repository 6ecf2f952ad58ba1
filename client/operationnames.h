#pragma once

#include <QString>

/// The service's names of the four requests, in URLs and in errors.
namespace OperationNames {

inline QString getDataSources()
{
    return QStringLiteral("getDataSources");
}

inline QString getJpx()
{
    return QStringLiteral("getJPX");
}

inline QString getClosestImage()
{
    return QStringLiteral("getClosestImage");
}

inline QString downloadImage()
{
    return QStringLiteral("downloadImage");
}

} // namespace OperationNames
