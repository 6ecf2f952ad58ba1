#pragma once

#include "bench/soak/sessionevidence.h"
#include "bench/soak/watchedservice.h"
#include "session/acquisitionsettings.h"

class AcquisitionController;

/// When a session is stopped.
enum class StopAt {
    End,      ///< never
    Frame,    ///< between two requests, when a frame has been accepted
    Lookup,   ///< while the service owes an answer to a lookup
    Download, ///< while it owes a picture
};

/// One session to soak, with the service that it gets.
struct LegOrder
{
    AcquisitionSettings settings;
    StopAt stopAt = StopAt::End;
    int stopNumber = 0; ///< of the lookup, or of the download; for Frame the first that follows
    int faultyUpTo = 0; ///< lookups and downloads
};

/// How it ended, according to the service, the log and the files.
struct LegResult
{
    RequestTally service;
    RequestTally log;
    SessionEvidence files;
    QStringList faults; ///< one sentence for each disagreement

    /// Runs a session to its end, or to its stop, and compares.
    static LegResult run(AcquisitionController &controller, const LegOrder &order);
};
