#include "platform/tools/tool_launcher_posix.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <limits>
#include <optional>
#include <stop_token>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/tools/captured_stream.h"
#include "platform/tools/child_environment.h"
#include "platform/tools/child_process.h"

namespace tallowcrest {

namespace {

using MonotonicClock = std::chrono::steady_clock;
using TimePoint = MonotonicClock::time_point;

/// The polling interval where no descriptor signals the exit or the stop.
constexpr std::chrono::milliseconds pollInterval{20};

/// How long a tool may take to terminate after a stop, or after a deadline at which it is killed.
constexpr std::chrono::milliseconds stopGrace{500};

/// Keeps deadline arithmetic from overflowing.
constexpr std::chrono::milliseconds longestTimeout = std::chrono::hours(24 * 365);

ToolResult notLaunched(int error) {
    ToolResult result;
    result.launchError = std::generic_category().message(error);
    return result;
}

/// Makes the pipe readable for good: the byte is never read, so it wakes everything that waits.
void wake(const spawn_support::Pipe& pipe) {
    ssize_t written = -1;
    do {
        written = ::write(pipe.writeEnd.get(), "", 1);
    } while (written < 0 && errno == EINTR);
}

/// A tool from its start to the end of `launch`. The references must outlive it.
class RunningTool {
public:
    RunningTool(ChildProcess& child, UniqueFD output, UniqueFD error, ToolResult& result,
                const ToolRequest& request)
        : request_(request),
          child_(child),
          result_(result),
          output_(std::move(output), &result.output, PosixToolLauncher::maximumOutputBytes),
          error_(std::move(error), nullptr, 0) {
        if (request.timeout) {
            deadline_ = MonotonicClock::now() +
                        std::clamp(*request.timeout, std::chrono::milliseconds(0), longestTimeout);
        }
    }

    bool isOver() const { return over_; }

    /// Whether the tool may still take its time, so that `stop` has something to do.
    bool awaitsStop() const { return !abandonAt_; }

    /// Asks the tool to terminate, unless its deadline has done so already, and limits how long
    /// the launch keeps waiting for it.
    void stop() {
        const TimePoint now = MonotonicClock::now();
        if (result_.deadlinePassed) {
            abandonAt_ = now;
            return;
        }
        abandonAt_ = now + stopGrace;
        child_.terminate();
    }

    /// Acts on the deadlines that have passed.
    void enforceDeadlines() {
        const TimePoint now = MonotonicClock::now();
        const bool deadlineDue = deadline_ && now >= *deadline_;
        const bool abandonDue = abandonAt_ && (deadlineDue || now >= *abandonAt_);
        if (!deadlineDue && !abandonDue) {
            return;
        }
        // It may have exited since the last poll.
        if (child_.hasExited()) {
            over_ = true;
            return;
        }
        if (deadlineDue) {
            deadline_.reset();
            result_.deadlinePassed = true;
            if (!abandonAt_) {
                child_.terminate();
                if (request_.isKilledAfterDeadline) {
                    abandonAt_ = now + stopGrace;
                }
            }
        }
        if (!abandonDue) {
            return;
        }
        const bool mayKill = request_.stop.stop_requested() ||
                             (request_.isKilledAfterDeadline && result_.deadlinePassed);
        if (mayKill && !std::exchange(isKilled_, true)) {
            // The program goes on: a child that is left to itself would stay, and then its zombie.
            child_.kill();
            abandonAt_ = now + stopGrace;
            return;
        }
        child_.abandon();
        over_ = true;
    }

    /// Waits until the tool writes or exits, a deadline passes, or a stop is requested, of all
    /// tools or of this one. Reads the output and notices the exit.
    void waitForEvents(int stopDescriptor, int ownStopDescriptor) {
        const bool exitWakes = child_.exitDescriptor() >= 0;
        const bool stopWakes =
            !awaitsStop() ||
            (stopDescriptor >= 0 && (ownStopDescriptor >= 0 || !request_.stop.stop_possible()));
        std::array<pollfd, 5> descriptors{{{output_.descriptor(), POLLIN, 0},
                                           {error_.descriptor(), POLLIN, 0},
                                           {child_.exitDescriptor(), POLLIN, 0},
                                           {awaitsStop() ? stopDescriptor : -1, POLLIN, 0},
                                           {awaitsStop() ? ownStopDescriptor : -1, POLLIN, 0}}};
        if (::poll(descriptors.data(), descriptors.size(), pollTimeout(exitWakes && stopWakes)) <
            0) {
            if (errno == EINTR) {
                return;
            }
            // Possibly out of memory for a moment. Non-blocking reads do no harm without data.
            std::this_thread::sleep_for(pollInterval);
            for (pollfd& descriptor : descriptors) {
                descriptor.revents = POLLIN;
            }
        }
        const auto& [output, error, exit, stop, ownStop] = descriptors;
        if (output.revents != 0) {
            output_.readAvailable();
        }
        if (error.revents != 0) {
            error_.readAvailable();
        }
        if (exit.revents != 0 || !exitWakes) {
            over_ = child_.hasExited();
        }
    }

    /// Completes the result.
    void finish() {
        output_.readRemaining();
        result_.terminationStatus = child_.terminationStatus();
    }

private:
    /// The timeout for `poll` in milliseconds, rounded up to avoid a busy wait; -1 for none.
    int pollTimeout(bool everythingWakes) const {
        std::optional<TimePoint> next = deadline_;
        if (abandonAt_ && (!next || *abandonAt_ < *next)) {
            next = abandonAt_;
        }
        std::optional<std::chrono::milliseconds> wait;
        if (next) {
            wait = std::max(
                std::chrono::ceil<std::chrono::milliseconds>(*next - MonotonicClock::now()),
                std::chrono::milliseconds(0));
        }
        if (!everythingWakes) {
            wait = wait ? std::min(*wait, pollInterval) : pollInterval;
        }
        if (!wait) {
            return -1;
        }
        return static_cast<int>(std::min<std::chrono::milliseconds::rep>(
            wait->count(), std::numeric_limits<int>::max()));
    }

    const ToolRequest& request_;
    ChildProcess& child_;
    ToolResult& result_;
    CapturedStream output_;
    CapturedStream error_;
    std::optional<TimePoint> deadline_;   ///< absent once it has passed
    std::optional<TimePoint> abandonAt_;  ///< absent as long as it may take its time
    bool isKilled_ = false;
    bool over_ = false;
};

}  // namespace

PosixToolLauncher::PosixToolLauncher() {
    // Takes the copy before other threads can change the environment.
    childEnvironment();
    if (spawn_support::openPipe(stopPipe_) != 0) {
        stopPipe_ = {};
    }
}

void PosixToolLauncher::requestStop() {
    if (stopRequested_.exchange(true) || !stopPipe_.writeEnd.valid()) {
        return;
    }
    wake(stopPipe_);
}

ToolResult PosixToolLauncher::launch(const ToolRequest& request) {
    const auto isStopped = [&] { return stopRequested_ || request.stop.stop_requested(); };
    if (isStopped()) {
        return notLaunched(ECANCELED);
    }

    spawn_support::Pipe output;
    spawn_support::Pipe error;
    int failure = openCapturePipe(output);
    if (failure == 0 && !request.mergeStandardError) {
        failure = openCapturePipe(error);
    }
    if (failure != 0) {
        return notLaunched(failure);
    }
    const int errorTarget =
        request.mergeStandardError ? output.writeEnd.get() : error.writeEnd.get();

    ChildProcess child;
    failure = child.spawn(request.path, request.arguments, output.writeEnd.get(), errorTarget);
    if (failure != 0) {
        return notLaunched(failure);
    }
    ToolResult result;
    result.launched = true;
    RunningTool tool(child, std::move(output.readEnd), std::move(error.readEnd), result, request);
    // Kept open here, they would keep the streams from ending.
    output.writeEnd.reset();
    error.writeEnd.reset();

    // Without a descriptor left, the launch polls the token.
    spawn_support::Pipe ownStop;
    if (request.stop.stop_possible() && spawn_support::openPipe(ownStop) != 0) {
        ownStop = {};
    }
    const std::stop_callback onStop(request.stop, [&ownStop] {
        if (ownStop.writeEnd.valid()) {
            wake(ownStop);
        }
    });
    while (!tool.isOver()) {
        tool.waitForEvents(stopPipe_.readEnd.get(), ownStop.readEnd.get());
        if (!tool.isOver() && isStopped() && tool.awaitsStop()) {
            tool.stop();
        }
        if (!tool.isOver()) {
            tool.enforceDeadlines();
        }
    }
    tool.finish();
    return result;
}

}  // namespace tallowcrest
