#pragma once

#include "session/acquisitionsettings.h"

/// The public archive, used sparingly: one request at a time, with a pause.
namespace PublicArchive {

/// Three frames each of AIA 171 and SUVI 195.
AcquisitionSettings settings();

/// Prepares this program's folder for it; false, with a reason, when that cannot be written.
bool configure(QString *errorText);

/**
 * Whether the archive that is configured answers, and has what settings() asks for.
 *
 * @param errorText  a sentence for the user, set when it does not
 */
bool answers(QString *errorText);

} // namespace PublicArchive
