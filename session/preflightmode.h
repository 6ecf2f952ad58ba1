#pragma once

/// How the requests of a datasource were planned.
enum class PreflightMode {
    DirectDenseSource, ///< at the requested cadence, without a look at the archive
    QuickProbe,        ///< by the archive's own spacing
    Fallback,          ///< at the requested cadence, since the look failed
};
