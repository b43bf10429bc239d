#pragma once

#include <functional>
#include <thread>

#include "platform/base/unique_fd.h"

namespace tallowcrest {

/// Turns the signals that ask a program to end (SIGINT, SIGTERM, SIGHUP) into a call, so that it
/// can end its tools and complete what it changes on the disk. A signal that was ignored when the
/// program was started stays ignored. A second signal ends the program at once, and so does the
/// first when this object still lives a minute later. One object at a time. Main thread.
class TerminationSignals {
public:
    /// `asked` is called with the first signal, on a thread of this object.
    explicit TerminationSignals(std::function<void()> asked);
    /// From then on the signals end the program at once.
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    /// Ends the program by the signal that has arrived, which tells its parent why it ended.
    /// Returns when none has. To be called when everything else is over.
    void endBySignal();

private:
    void stopWatching();

    UniqueFD readEnd_;
    UniqueFD writeEnd_;
    std::thread thread_;
};

}  // namespace tallowcrest
