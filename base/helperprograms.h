#pragma once

/// The programs that transfer and that encode, where a folder was unpacked without them.
namespace HelperPrograms {

/**
 * Links bin/curl and bin/ffmpeg to what the search path has, where they are missing.
 *
 * Only a program that sys/orvik.ini looks for there is linked, and whatever already bears the name,
 * be it a link that leads nowhere, stays. On systems other than Linux it does nothing.
 */
void linkMissing();

} // namespace HelperPrograms
