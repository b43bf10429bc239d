#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/local_records.h"

namespace tallowcrest {

class ActivityLog;
class MainQueue;
class Observable;

/// Holds the one change that waits for the owner's explicit confirmation. The component that makes
/// a kind of change registers the handler for it. Main thread.
class ConfirmationDesk {
public:
    /// Called with the answered request, which is no longer pending then.
    struct Handler {
        std::function<void(const ConfirmationRequest&)> confirm;
        std::function<void(const ConfirmationRequest&)> cancel;  ///< may be absent
    };

    /// The references must outlive the object.
    ConfirmationDesk(ActivityLog& log, MainQueue& mainQueue);
    ~ConfirmationDesk();
    ConfirmationDesk(const ConfirmationDesk&) = delete;
    ConfirmationDesk& operator=(const ConfirmationDesk&) = delete;

    /// Called once per kind, before its first request.
    void registerKind(std::string kind, Handler handler);

    /// Absent when no request is pending.
    const std::optional<ConfirmationRequest>& pendingConfirmation() const { return pending_; }
    /// The paths of the executables that the pending request affects. Empty when it affects none on
    /// this machine, or when they are unknown.
    const std::vector<std::string>& targetPaths() const { return targetPaths_; }

    /// Makes `request` the pending one. It replaces an older one without a message and without a
    /// call of its handler.
    void requestConfirmation(ConfirmationRequest request,
                             std::vector<std::string> targetPaths = {});

    /// Ends the pending request and calls the handler of its kind, or records that there is none.
    /// Does nothing when no request is pending, so no request runs twice.
    void confirmPending();

    /// Ends the pending request, records a message and calls the handler of its kind, if there is
    /// one. Without a pending request, only notifies observers. Every way to close the question
    /// other than confirming it is a cancellation.
    void cancelPending();

    Observable& observable() { return *observable_; }

private:
    ActivityLog& log_;
    std::unique_ptr<Observable> observable_;
    std::map<std::string, Handler, std::less<>> handlers_;
    std::optional<ConfirmationRequest> pending_;
    std::vector<std::string> targetPaths_;
};

}  // namespace tallowcrest
