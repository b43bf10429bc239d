#pragma once

#include <mutex>
#include <optional>
#include <utility>

namespace tallowcrest {

/// What came of a job, also for those who do not wait until its end is told. Any thread.
template <class Result>
class SharedResult {
public:
    void set(Result result) {
        const std::lock_guard guard(lock_);
        result_ = std::move(result);
    }
    /// Absent until the job has set it.
    std::optional<Result> get() const {
        const std::lock_guard guard(lock_);
        return result_;
    }

private:
    mutable std::mutex lock_;
    std::optional<Result> result_;
};

}  // namespace tallowcrest
