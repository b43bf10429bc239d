#include "core/observable.h"

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace tallowcrest {

namespace detail {

struct ObservableState {
    std::map<std::uint64_t, std::function<void()>> observers;
    std::uint64_t nextID = 1;
    bool notificationQueued = false;
};

namespace {

void notify(const std::shared_ptr<ObservableState>& state) {
    state->notificationQueued = false;
    std::vector<std::uint64_t> ids;
    ids.reserve(state->observers.size());
    for (const auto& [id, observer] : state->observers) {
        ids.push_back(id);
    }
    for (const std::uint64_t id : ids) {
        // Looked up again each time: an earlier observer may have ended a later registration.
        const auto found = state->observers.find(id);
        if (found != state->observers.end()) {
            const auto observer = found->second;
            observer();
        }
    }
}

}  // namespace
}  // namespace detail

Subscription::Subscription(std::weak_ptr<detail::ObservableState> state, std::uint64_t id)
    : state_(std::move(state)), id_(id) {}

Subscription::Subscription(Subscription&& other) noexcept
    : state_(std::exchange(other.state_, {})), id_(std::exchange(other.id_, 0)) {}

Subscription& Subscription::operator=(Subscription&& other) noexcept {
    if (this != &other) {
        end();
        state_ = std::exchange(other.state_, {});
        id_ = std::exchange(other.id_, 0);
    }
    return *this;
}

Subscription::~Subscription() {
    end();
}

void Subscription::end() {
    if (const auto state = state_.lock()) {
        state->observers.erase(id_);
    }
    state_.reset();
}

Observable::Observable(MainQueue& mainQueue)
    : mainQueue_(mainQueue), state_(std::make_shared<detail::ObservableState>()) {}

void Observable::changed() {
    if (std::exchange(state_->notificationQueued, true)) {
        return;
    }
    mainQueue_.post([weakState = std::weak_ptr(state_)] {
        if (const auto state = weakState.lock()) {
            detail::notify(state);
        }
    });
}

Subscription Observable::subscribe(std::function<void()> observer) {
    const std::uint64_t id = state_->nextID++;
    state_->observers.emplace(id, std::move(observer));
    return {state_, id};
}

ObserverGroup::ObserverGroup(MainQueue& mainQueue, std::function<void()> observer)
    : mainQueue_(mainQueue), observer_(std::move(observer)) {}

void ObserverGroup::observe(const std::vector<Observable*>& observables) {
    subscriptions_.clear();
    observerSubscription_ = anyChanged_.emplace(mainQueue_).subscribe(observer_);
    for (Observable* each : observables) {
        subscriptions_.push_back(each->subscribe([this] { anyChanged_->changed(); }));
    }
}

}  // namespace tallowcrest
