#pragma once

struct AcquisitionSettings;
struct DataSource;

namespace Simulator {
class Archive;
}

/// How many requests of one datasource ended in which way.
struct RequestCounts
{
    int requested = 0;
    int accepted = 0;
    int duplicates = 0;
    int rejected = 0; ///< for time
    int failed = 0;

    friend bool operator==(const RequestCounts &a, const RequestCounts &b)
    {
        return a.requested == b.requested && a.accepted == b.accepted &&
               a.duplicates == b.duplicates && a.rejected == b.rejected && a.failed == b.failed;
    }
    friend bool operator!=(const RequestCounts &a, const RequestCounts &b) { return !(a == b); }
};

/**
 * The result that a session must have, computed from the archive itself.
 *
 * Uses only the times at which the archive has pictures and shares no code with the engine, so that
 * it can find errors of the engine.
 */
namespace Expectation {

RequestCounts counts(const Simulator::Archive &archive, const DataSource &source,
                     const AcquisitionSettings &settings);

} // namespace Expectation
