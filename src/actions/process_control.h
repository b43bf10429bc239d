#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace tallowcrest {

/// The result of asking one process to quit. Not an `Outcome`: the words for the owner name the
/// process, which only the caller knows.
struct TerminationResult {
    enum class Kind {
        asked,    ///< the signal was delivered
        refused,  ///< the system did not deliver it, or the process has ended meanwhile
        blocked,  ///< not tried: not allowed, or the pid belongs to another process by now
        failed,   ///< it could not be tried
    };

    Kind kind = Kind::failed;
    std::string error;  ///< the system's message for `failed`, else empty

    bool operator==(const TerminationResult&) const = default;
};

/// One process as it was reviewed. Its pid alone does not identify it, because the pid may belong
/// to another process by the time the owner confirms. Main thread.
class HeldProcess {
public:
    virtual ~HeldProcess() = default;

    /// Sends TERM, and never anything stronger, to this process or to none.
    virtual TerminationResult terminate() = 0;
};

/// Finds and signals processes of this machine. Main thread.
class ProcessControl {
public:
    virtual ~ProcessControl() = default;

    /// Holds the process with this pid and start time, as a `ProcessSample` has them; a start time
    /// of 0 means whichever process has the pid now. Never null: when there is no such process,
    /// `terminate` of the result signals nothing. `pid` has passed `validatedPID`.
    /// The result may outlive this object.
    virtual std::unique_ptr<HeldProcess> hold(std::int64_t pid, std::uint64_t startTime) = 0;
};

}  // namespace tallowcrest
