#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

#include "core/jobs/jobs.h"

namespace tallowcrest {

/// A stop that is requested when either of two others is. For the time of one piece of work.
class EitherStop {
public:
    EitherStop(const std::stop_token& first, const std::stop_token& second)
        : first_(first, Forward{source_}), second_(second, Forward{source_}) {}

    std::stop_token token() const { return source_.get_token(); }

private:
    struct Forward {
        std::stop_source source;
        void operator()() { source.request_stop(); }
    };

    std::stop_source source_;
    std::stop_callback<Forward> first_;
    std::stop_callback<Forward> second_;
};

/// Long background work of a component, of which at most one piece is under way, and which the
/// owner can stop. A member of the component, declared last. Main thread.
class StoppableRun {
public:
    explicit StoppableRun(Jobs& jobs) : jobs_(jobs) {}

    bool isUnderWay() const { return isUnderWay_; }
    /// Whether the owner has asked the work under way to stop.
    bool isStopping() const { return isUnderWay_ && source_.stop_requested(); }

    /// Begins a piece of work while none is under way: its jobs are to be run in the scope. They
    /// take `stopToken` by value, combine it with their own stop, and end soon after a request.
    JobScope& begin();
    std::stop_token stopToken() const { return source_.get_token(); }
    /// The work is over.
    void end();
    /// The same for work that may go on: nothing of it arrives any more.
    void forget();

    /// Asks the work to stop. False when none is under way or it was asked before.
    bool stop();

    /// The patience with work that changes files: what is written at this moment still has to get
    /// to the disk.
    static constexpr std::chrono::seconds patienceWithAChange{10};

    /// The same, but when a file system hangs, the work cannot end: after `patience` it counts as
    /// over, nothing of it arrives any more, and `forgotten` is called.
    bool stopOrForget(std::function<void()> forgotten,
                      std::chrono::milliseconds patience = std::chrono::seconds(2));

private:
    Jobs& jobs_;
    bool isUnderWay_ = false;
    std::stop_source source_;
    std::unique_ptr<RepeatingTimer> patience_;
    std::optional<JobScope> scope_;
};

}  // namespace tallowcrest
