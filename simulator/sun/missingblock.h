#pragma once

namespace Simulator {

struct Disk;
struct IndexedPicture;

/**
 * Leaves one block inside the disk black or transparent, away from the disk's centre.
 *
 * Blocks are a sixteenth of the picture's shorter side, 64 to 256 pixels, on a grid from its
 * upper left corner.
 */
void leaveBlockEmpty(IndexedPicture &picture, const Disk &disk, bool transparent);

} // namespace Simulator
