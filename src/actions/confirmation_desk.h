#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "core/local_records.h"
#include "core/observable.h"

namespace tallowcrest {

/// Holds the one change that waits for the owner's explicit yes, and hands it to its owner then.
/// Which changes there are is known to those who register their kinds. Main thread.
class ConfirmationDesk {
public:
    /// What the owner of a kind does with a request of it.
    struct Handler {
        /// The request is pending no more when this runs.
        std::function<void(const ConfirmationRequest&)> confirm;
        /// What a cancellation means beyond the message; may be absent.
        std::function<void(const ConfirmationRequest&)> cancel;
    };

    ConfirmationDesk(ActivityLog& log, MainQueue& mainQueue) : log_(log), observable_(mainQueue) {}
    ConfirmationDesk(const ConfirmationDesk&) = delete;
    ConfirmationDesk& operator=(const ConfirmationDesk&) = delete;

    /// Once per kind, by its owner, before the first request of that kind.
    void registerKind(std::string kind, Handler handler);

    const std::optional<ConfirmationRequest>& pendingConfirmation() const { return pending_; }
    /// The executables that the pending request is about, whole paths; empty when it has no target
    /// on this machine, or one that nothing is known of.
    const std::vector<std::string>& targetPaths() const { return targetPaths_; }

    /// Asks for a yes. An older request is replaced without a word: it is neither confirmed nor
    /// cancelled.
    void requestConfirmation(ConfirmationRequest request,
                             std::vector<std::string> targetPaths = {});

    /// Hands the pending request to the owner of its kind; without one, does nothing. A second call
    /// finds nothing pending, so no request runs twice.
    void confirmPending();

    /// Drops the pending request and says so. Any dismissal but the yes itself is this.
    void cancelPending();

    Observable& observable() { return observable_; }

private:
    ActivityLog& log_;
    Observable observable_;
    std::map<std::string, Handler, std::less<>> handlers_;
    std::optional<ConfirmationRequest> pending_;
    std::vector<std::string> targetPaths_;
};

}  // namespace tallowcrest
