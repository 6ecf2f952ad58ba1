#pragma once

/// Finds curl and ffmpeg for a folder that was unpacked without them.
namespace HelperPrograms {

/**
 * Creates bin/curl and bin/ffmpeg, if missing, as links to the programs found in PATH.
 *
 * Links a program only if sys/orvik.ini expects it there. Whatever already has the name stays, even
 * a dangling link. Does nothing on systems other than Linux.
 */
void linkMissing();

} // namespace HelperPrograms
