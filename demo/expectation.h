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
 * What a session must come to, told from the archive itself.
 *
 * Works out from the times at which the archive has pictures, and shares no code with the engine:
 * it is there to find the engine wrong.
 */
namespace Expectation {

RequestCounts counts(const Simulator::Archive &archive, const DataSource &source,
                     const AcquisitionSettings &settings);

} // namespace Expectation
