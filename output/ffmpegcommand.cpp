#include "output/ffmpegcommand.h"

QStringList FfmpegCommand::arguments(int fps, const QString &inputPattern, int crf,
                                     const QString &outputFile)
{
    return {QStringLiteral("-y"),
            QStringLiteral("-framerate"),
            QString::number(fps),
            QStringLiteral("-start_number"),
            QStringLiteral("0"),
            QStringLiteral("-i"),
            inputPattern,
            QStringLiteral("-c:v"),
            QStringLiteral("libx264"),
            QStringLiteral("-crf"),
            QString::number(crf),
            QStringLiteral("-pix_fmt"),
            QStringLiteral("yuv420p"), // the only format that every player supports
            outputFile};
}
