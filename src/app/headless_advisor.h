#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/observable.h"

namespace tallowcrest {

class SystemMonitor;

/// Asks the advisor once, for its answer to a question or for an analysis, and passes on what it
/// says. Nothing that it proposes is run, and nothing is stored. Main thread.
class HeadlessAdvisor {
public:
    /// `answered` gets the answer, once, on a later turn of the main queue. The monitor must
    /// outlive the object.
    HeadlessAdvisor(SystemMonitor& monitor,
                    std::function<void(const std::string& answer)> answered);

    /// An analysis without a question. Called once, after the first sample.
    void begin(const std::optional<std::string>& question);

private:
    void finish();

    SystemMonitor& monitor_;
    std::function<void(const std::string&)> answered_;
    bool isQuestion_ = false;
    bool isDone_ = false;
    ObserverGroup changes_;
};

}  // namespace tallowcrest
