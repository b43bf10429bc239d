#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "core/jobs/queues.h"

namespace tallowcrest {

namespace detail {
struct ObservableState;
}

/// Keeps an observer registered; destroying it ends the registration. It may outlive the
/// observable. Main thread.
class Subscription {
public:
    Subscription() = default;
    Subscription(Subscription&& other) noexcept;
    Subscription& operator=(Subscription&& other) noexcept;
    ~Subscription();

private:
    friend class Observable;
    Subscription(std::weak_ptr<detail::ObservableState> state, std::uint64_t id);
    void end();

    std::weak_ptr<detail::ObservableState> state_;
    std::uint64_t id_ = 0;
};

/// Notifies its observers that state has changed, at most once per turn of the main queue, however
/// many changes that turn made. Observers read the state again. Main thread.
class Observable {
public:
    explicit Observable(MainQueue& mainQueue);
    Observable(const Observable&) = delete;
    Observable& operator=(const Observable&) = delete;

    /// Asks for a notification on the next turn of the main queue. Nothing is delivered after the
    /// observable is gone.
    void changed();

    /// `observer` may subscribe and unsubscribe, itself included, while it is being notified.
    [[nodiscard]] Subscription subscribe(std::function<void()> observer);

private:
    MainQueue& mainQueue_;
    std::shared_ptr<detail::ObservableState> state_;
};

/// Notifies one observer of the changes of several observables: once per turn of the main queue in
/// which any of them has changed, one turn after them. Main thread.
class ObserverGroup {
public:
    /// `mainQueue` must outlive the object; the observables need not.
    ObserverGroup(MainQueue& mainQueue, std::function<void()> observer);

    /// Observes these and no others from now on. Pending notifications of the former ones are
    /// dropped. Must not be called by the observer itself.
    void observe(const std::vector<Observable*>& observables);

private:
    MainQueue& mainQueue_;
    std::function<void()> observer_;
    std::optional<Observable> anyChanged_;
    Subscription observerSubscription_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace tallowcrest
