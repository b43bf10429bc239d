#include "core/confirmation_desk.h"

#include <utility>

#include <fmt/format.h>

#include "core/activity_log.h"
#include "core/observable.h"

namespace tallowcrest {

ConfirmationDesk::ConfirmationDesk(ActivityLog& log, MainQueue& mainQueue)
    : log_(log), observable_(std::make_unique<Observable>(mainQueue)) {}

ConfirmationDesk::~ConfirmationDesk() = default;

ConfirmationDesk::Registration ConfirmationDesk::registerKind(std::string_view kind,
                                                              Handler handler) {
    std::string name(kind);
    handlers_.insert_or_assign(name, std::move(handler));
    return {this,
            [name = std::move(name)](ConfirmationDesk* desk) { desk->handlers_.erase(name); }};
}

void ConfirmationDesk::requestConfirmation(ConfirmationRequest request, ConfirmationTargets targets,
                                           std::shared_ptr<void> held) {
    pending_ = std::move(request);
    targets_ = std::move(targets);
    held_ = std::move(held);
    observable_->changed();
}

Outcome ConfirmationDesk::confirmPending() {
    // Before the handler is called, so that a second press cannot run the request twice.
    const std::optional<Answered> answered = takePending();
    if (!answered) {
        return Outcome::ignored();
    }
    const ConfirmationRequest& request = answered->request;
    const auto handler = handlers_.find(request.kind);
    if (handler == handlers_.end()) {
        return log_.record(
            Outcome::refused(fmt::format("No handler for confirmation: {}.", request.kind)));
    }
    return handler->second.confirm(request, answered->held.get());
}

Outcome ConfirmationDesk::cancelPending() {
    // Before the handler is called, because that may request another confirmation.
    const std::optional<Answered> answered = takePending();
    if (!answered) {
        return Outcome::ignored();
    }
    const ConfirmationRequest& request = answered->request;
    Outcome outcome = log_.record(Outcome::done(fmt::format("Canceled: {}.", request.title)));
    const auto handler = handlers_.find(request.kind);
    if (handler != handlers_.end() && handler->second.cancel) {
        handler->second.cancel(request);
    }
    return outcome;
}

std::optional<ConfirmationDesk::Answered> ConfirmationDesk::takePending() {
    if (!pending_) {
        return std::nullopt;
    }
    targets_ = {};
    observable_->changed();
    return Answered{*std::exchange(pending_, std::nullopt), std::exchange(held_, nullptr)};
}

}  // namespace tallowcrest
