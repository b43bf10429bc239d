#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/kernel_file.h"

namespace tallowcrest {

/// Stores the pids that the directory lists in `pids`, ascending and without duplicates. Returns
/// false, with `pids` empty, when the directory cannot be listed. Moves the position of the
/// descriptor, so only one thread may use it at a time.
bool listProcessIDs(int procDirectory, std::vector<std::int32_t>& pids);

/// Keeps a list of pids up to date. Listing /proc makes the kernel look up every process, so
/// between listings only the pids that were assigned since the previous sample are probed. One
/// thread at a time.
class ProcfsPIDList {
public:
    /// Whether a process with this pid exists.
    using Exists = std::function<bool(std::int32_t pid)>;

    /// A listing is made after this many samples at the latest, to find processes that the probes
    /// miss, such as those that were started with a chosen pid.
    static constexpr int samplesPerListing = 8;
    /// With more new pids than this, listing is cheaper than probing.
    static constexpr std::int32_t maximumProbes = 512;

    /// If `exists` is empty, every sample makes a listing.
    ProcfsPIDList(const std::string& procRoot, Exists exists);

    /// Adds new pids to `pids`, which holds the result of the previous call less the pids that the
    /// caller has removed because their processes have ended. Ascending and without duplicates.
    /// Returns false, with `pids` empty, when the directory cannot be listed.
    bool update(int procDirectory, std::vector<std::int32_t>& pids);

private:
    std::optional<std::int32_t> readNewest() const;
    bool canProbe(std::optional<std::int32_t> newest) const;
    void probe(std::int32_t newest, std::vector<std::int32_t>& pids) const;

    KernelFile loadAverage_;
    Exists exists_;
    std::optional<std::int32_t> newest_;        ///< last assigned pid as of the previous sample
    std::optional<std::int32_t> beforeNewest_;  ///< the same two samples ago
    bool loadAverageIsOfProc_ = false;
    int samplesSinceListing_ = 0;
};

}  // namespace tallowcrest
