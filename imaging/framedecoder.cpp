#include "imaging/framedecoder.h"

#include <QImage>
#include <QImageReader>
#include <QString>

QImage FrameDecoder::decode(const QString &file)
{
    QImageReader reader(file);
    reader.setDecideFormatFromContent(true);
    return reader.read().convertToFormat(QImage::Format_ARGB32);
}
