#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/kernel_file.h"

namespace tallowcrest {

/// Stores the process numbers that the directory lists into `pids`, ascending and each once. False
/// when the directory cannot be listed; `pids` then holds nothing. The descriptor's position moves,
/// so one descriptor serves one thread at a time.
bool listProcessIDs(int procDirectory, std::vector<std::int32_t>& pids);

/// Keeps a list of process numbers up to date. A listing makes the kernel look up every process by
/// its name, so between listings only the numbers that were given out since are probed. One thread
/// at a time.
class ProcfsPidFollower {
public:
    /// Whether a process has this number now.
    using Exists = std::function<bool(std::int32_t pid)>;

    /// What a probe may have missed, a number chosen by its process for instance, shows up with the
    /// listing that is due after so many samples at the latest.
    static constexpr int samplesPerListing = 8;
    /// With more new numbers than this a listing is the cheaper way.
    static constexpr std::int32_t mostProbes = 512;

    /// Without `exists` every sample lists.
    ProcfsPidFollower(const std::string& procRoot, Exists exists);

    /// Adds the new numbers to `pids`, which holds what the previous call left but for the ones
    /// that the caller knows to be gone; ascending and each once. False when the directory cannot
    /// be listed; `pids` then holds nothing.
    bool follow(int procDirectory, std::vector<std::int32_t>& pids);

private:
    std::optional<std::int32_t> readNewest() const;
    bool canProbe(std::optional<std::int32_t> newest) const;
    void probe(std::int32_t newest, std::vector<std::int32_t>& pids) const;

    KernelFile loadAverage_;
    Exists exists_;
    std::optional<std::int32_t> newest_;        ///< number given out last, one sample ago
    std::optional<std::int32_t> newestBefore_;  ///< two samples ago
    bool isNewestOfThisList_ = false;
    int samplesSinceListing_ = 0;
};

}  // namespace tallowcrest
