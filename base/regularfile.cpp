#include "base/regularfile.h"

#include "base/errortext.h"

#include <QFile>
#include <QFileInfo>

bool RegularFile::open(QFile &file)
{
    // Other kinds are recognised without opening them: opening a pipe waits for its writer.
    return (QFileInfo(file).isFile() || !file.exists()) && file.open(QIODevice::ReadOnly);
}

std::optional<QByteArray> RegularFile::read(const QString &path, qint64 maxBytes,
                                            QString *errorText)
{
    QFile file(path);
    if (!open(file))
        return ErrorText::nothing(errorText, file.exists() && !QFileInfo(path).isFile()
                                                 ? QStringLiteral("not a regular file")
                                                 : file.errorString());
    const QByteArray content = file.read(maxBytes + 1);
    if (content.size() > maxBytes)
        return ErrorText::nothing(
            errorText, QStringLiteral("larger than %1 MB").arg(QString::number(maxBytes >> 20)));
    return content;
}
