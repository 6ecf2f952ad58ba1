#pragma once

#include <QString>

namespace FrameCleanup {

/// Removes the numbered PNG frames of one datasource and its video_frames folder when that is
/// empty.
void removeFrames(const QString &sourceDirectory);

} // namespace FrameCleanup
