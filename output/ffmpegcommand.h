#pragma once

#include <QStringList>

namespace FfmpegCommand {

/**
 * The argument list that encodes a numbered PNG sequence as H.264.
 *
 * @param inputPattern  for ffmpeg's image sequence reader, relative to its working directory
 */
QStringList arguments(int fps, const QString &inputPattern, int crf, const QString &outputFile);

} // namespace FfmpegCommand
