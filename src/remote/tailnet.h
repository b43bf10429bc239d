#pragma once

#include <memory>
#include <optional>

#include "core/date.h"
#include "core/jobs/jobs.h"
#include "core/outcome.h"
#include "remote/tail_status.h"
#include "remote/tailnet_reading.h"

namespace tallowcrest {

class ActivityLog;
class Clock;
class Observable;
class Pasteboard;
struct Services;

/// The other machines of the tailnet. Main thread.
///
/// A reading takes as long as the tailnet's client lets it wait, so a sample neither waits for one
/// nor brings its own: it publishes what a reading brought since the sample before it.
class Tailnet {
public:
    /// The references must outlive the object.
    Tailnet(const Services& services, TailnetSources sources, Pasteboard& pasteboard);
    ~Tailnet();
    Tailnet(const Tailnet&) = delete;
    Tailnet& operator=(const Tailnet&) = delete;

    const TailnetState& state() const { return state_; }

    /// Begins to read the state in the background, unless a reading is under way or there is
    /// nothing to read it from. A reading that has taken much longer than its tools may has failed:
    /// it is asked to stop, the state that is published next is empty, and another one begins.
    void beginReading();
    /// Whether a reading is under way.
    bool isReading() const { return reading_.has_value(); }
    /// Whether the reading that was published last got no answer: the client is missing, or hangs,
    /// or told something else. False before the first one.
    bool isUnanswered() const { return isRead_ && !state_.isAnswered; }
    /// Publishes the result of the reading that ended last, unless that has been done.
    void publishReading();

    /// Replaces the whole state.
    void publish(TailnetState state);

    /// Copies the command that tests the tailnet, and shows that without recording an event.
    Outcome copyTailscaleHealthCommand();

    /// Notifies of a changed state.
    Observable& observable() { return *observable_; }

private:
    TailnetSources sources_;
    Pasteboard& pasteboard_;
    std::unique_ptr<Observable> observable_;
    TailnetState state_;
    std::optional<TailnetState> unpublished_;
    bool isRead_ = false;  ///< a reading has been published
    const Clock& clock_;
    Date readingSince_;
    Jobs& jobs_;
    std::optional<JobScope> reading_;  ///< absent when none is under way
};

}  // namespace tallowcrest
