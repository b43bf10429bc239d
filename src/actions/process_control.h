#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace tallowcrest {

/// What became of asking one process to quit.
struct TerminationResult {
    enum class Outcome {
        asked,    ///< the signal was delivered
        refused,  ///< the system would not deliver it, or the process has ended meanwhile
        blocked,  ///< not tried: not allowed, or the number belongs to another process by now
        failed,   ///< it could not be tried
    };

    Outcome outcome = Outcome::failed;
    std::string error;  ///< the platform's words for `failed`, else empty

    bool operator==(const TerminationResult&) const = default;
};

/// One process as it was reviewed. Its number alone would not do: that may belong to another
/// process by the time the owner has confirmed. Main thread.
class HeldProcess {
public:
    virtual ~HeldProcess() = default;

    /// Sends TERM, and never anything stronger, to that very process or to none.
    virtual TerminationResult terminate() = 0;
};

/// Finds and signals processes of this machine. Main thread.
class ProcessControl {
public:
    virtual ~ProcessControl() = default;

    /// Takes hold of the process with this number and start time, as a `ProcessSample` has them; a
    /// start time of 0 stands for whichever process bears the number now. Never null: where no such
    /// process can be held, its `terminate` signals nothing. `pid` has passed `validatedPID`.
    virtual std::unique_ptr<HeldProcess> hold(std::int64_t pid, std::uint64_t startTime) = 0;
};

}  // namespace tallowcrest
