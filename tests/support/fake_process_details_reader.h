#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "sampling/process_details.h"

namespace tallowcrest {

/// Returns the facts that a test set, by pid, whatever the start time.
class FakeProcessDetailsReader final : public ProcessDetailsReader {
public:
    std::optional<ProcessFacts> readFacts(std::int64_t pid, std::uint64_t startTime) override {
        read.push_back(pid);
        startTimes[pid] = startTime;
        const auto found = facts.find(pid);
        return found == facts.end() ? std::nullopt : std::optional(found->second);
    }

    std::map<std::int64_t, ProcessFacts> facts;
    std::vector<std::int64_t> read;                    ///< the pids asked for, in that order
    std::map<std::int64_t, std::uint64_t> startTimes;  ///< the start times asked for, by pid
};

}  // namespace tallowcrest
