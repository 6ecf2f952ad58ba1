#include "base/filereplace.h"

#include <QFile>

#include <filesystem>
#include <system_error>

namespace {

/// Windows' 8-bit code page cannot hold every name.
std::filesystem::path systemPath(const QString &path)
{
#ifdef Q_OS_WIN
    return path.toStdWString();
#else
    return QFile::encodeName(path).toStdString();
#endif
}

} // namespace

bool FileReplace::replace(const QString &path, const QString &by)
{
    std::error_code error; // neither QFile nor C's rename() replaces a file everywhere
    std::filesystem::rename(systemPath(by), systemPath(path), error);
    return !error;
}
