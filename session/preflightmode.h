#pragma once

/// How the requests of a datasource were planned.
enum class PreflightMode {
    DirectDenseSource, ///< at the requested cadence, without a probe
    QuickProbe,        ///< by the spacing that a probe found
    Fallback,          ///< at the requested cadence, because the probe failed
};
