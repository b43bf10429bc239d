#include "disk/stoppable_run.h"

#include <utility>

namespace tallowcrest {

JobScope& StoppableRun::begin() {
    isUnderWay_ = true;
    source_ = {};
    return scope_.emplace(jobs_);
}

void StoppableRun::end() {
    isUnderWay_ = false;
    patience_.reset();
}

void StoppableRun::forget() {
    scope_.reset();
    end();
}

bool StoppableRun::stop() {
    return isUnderWay_ && source_.request_stop();
}

bool StoppableRun::stopOrForget(std::function<void()> forgotten,
                                std::chrono::milliseconds patience) {
    if (!stop()) {
        return false;
    }
    patience_ =
        jobs_.mainQueue().scheduleRepeating(patience, [this, forgotten = std::move(forgotten)] {
            forget();
            forgotten();
        });
    return true;
}

}  // namespace tallowcrest
