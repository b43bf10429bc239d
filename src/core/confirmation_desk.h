#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/local_records.h"
#include "core/outcome.h"

namespace tallowcrest {

class ActivityLog;
class MainQueue;
class Observable;

/// What a confirmation request affects. All empty when that is unknown, or nothing.
struct ConfirmationTargets {
    std::vector<std::string> paths = {};  ///< of the executables, each once
    /// The PIDs of the processes, when the message of the request does not name them.
    std::vector<std::int64_t> pids = {};

    bool operator==(const ConfirmationTargets&) const = default;
};

/// Holds the one change that waits for the owner's explicit confirmation. The component that makes
/// a kind of change registers the handler for it. Main thread.
class ConfirmationDesk {
public:
    /// Called with the answered request, which is no longer pending then. `held` is what came with
    /// the request, valid during the call, and null if nothing did.
    struct Handler {
        /// Returns what became of the change.
        std::function<Outcome(const ConfirmationRequest&, void* held)> confirm;
        std::function<void(const ConfirmationRequest&)> cancel;  ///< may be absent
    };

    /// Keeps a handler registered as long as it exists. The desk must outlive it.
    using Registration = std::shared_ptr<void>;

    /// The references must outlive the object.
    ConfirmationDesk(ActivityLog& log, MainQueue& mainQueue);
    ~ConfirmationDesk();
    ConfirmationDesk(const ConfirmationDesk&) = delete;
    ConfirmationDesk& operator=(const ConfirmationDesk&) = delete;

    /// Called once per kind, before its first request. A request that is still pending when the
    /// registration ends has no handler.
    [[nodiscard]] Registration registerKind(std::string_view kind, Handler handler);

    /// Absent when no request is pending.
    const std::optional<ConfirmationRequest>& pendingConfirmation() const { return pending_; }
    /// What the pending request affects.
    const ConfirmationTargets& targets() const { return targets_; }

    /// Makes `request` the pending one. It replaces an older one without a message and without a
    /// call of its handler. `held` is what its owner holds for it until the request is answered or
    /// replaced.
    void requestConfirmation(ConfirmationRequest request, ConfirmationTargets targets = {},
                             std::shared_ptr<void> held = {});

    /// Ends the pending request, calls the handler of its kind and returns the handler's outcome.
    /// Refused with a message when there is no handler, and ignored when no request is pending, so
    /// no request runs twice.
    Outcome confirmPending();

    /// Ends the pending request, records a message and calls the handler of its kind, if there is
    /// one. Ignored when no request is pending; nothing changes then. Every way to close the
    /// question other than confirming it is a cancellation.
    Outcome cancelPending();

    /// Notifies when a request becomes pending, is replaced or is answered.
    Observable& observable() { return *observable_; }

private:
    /// A request that was pending, and what was held for it.
    struct Answered {
        ConfirmationRequest request;
        std::shared_ptr<void> held;
    };

    /// Ends the pending request.
    std::optional<Answered> takePending();

    ActivityLog& log_;
    std::unique_ptr<Observable> observable_;
    std::map<std::string, Handler, std::less<>> handlers_;
    std::optional<ConfirmationRequest> pending_;
    ConfirmationTargets targets_;
    std::shared_ptr<void> held_;
};

}  // namespace tallowcrest
