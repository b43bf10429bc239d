#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/observable.h"
#include "core/outcome.h"

namespace tallowcrest {

class SystemMonitor;

/// What the advisor has said.
struct AdvisorAnswer {
    std::string text;
    bool isOfProvider = false;  ///< and not of this machine
    std::string note = {};      ///< what the text does not tell; empty when there is nothing
};

/// Asks the advisor once, for its answer to a question or for an analysis, and passes on what it
/// says. Nothing that it proposes is run, and nothing is stored. Main thread.
class HeadlessAdvisor {
public:
    using Answered = std::function<void(const AdvisorAnswer& answer)>;

    /// `answered` gets the answer, once, on a later turn of the main queue. The monitor must
    /// outlive the object.
    HeadlessAdvisor(SystemMonitor& monitor, Answered answered);

    /// An analysis without a question. Where the settings ask before an analysis is sent, it is
    /// sent only if it `mayBeSent`, and otherwise made on this machine. When the outcome is
    /// refused, its message says why, and there will be no answer. Called once, after the first
    /// sample.
    Outcome begin(const std::optional<std::string>& question, bool mayBeSent);

private:
    void goOn();
    void settleConsent();

    SystemMonitor& monitor_;
    Answered answered_;
    bool isQuestion_ = false;
    bool mayBeSent_ = false;
    bool isDone_ = false;
    std::string note_;
    ObserverGroup changes_;
};

}  // namespace tallowcrest
