#include "platform/tools/tool_launcher_posix.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <limits>
#include <optional>
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
using Instant = MonotonicClock::time_point;

/// How often to look where nothing announces an exit or a stop.
constexpr std::chrono::milliseconds pollStep{20};

/// How long a tool may take to end by itself once the whole process is about to end.
constexpr std::chrono::milliseconds stopGrace{500};

/// Keeps the arithmetic of instants far from overflow.
constexpr std::chrono::milliseconds longestTimeout = std::chrono::hours(24 * 365);

ToolResult notLaunched(int error) {
    ToolResult result;
    result.launchError = std::generic_category().message(error);
    return result;
}

/// A launched tool until its launch is over. `result` and `child` outlive it.
class RunningTool {
public:
    RunningTool(ChildProcess& child, UniqueFD output, UniqueFD error, ToolResult& result,
                std::optional<std::chrono::milliseconds> timeout)
        : child_(child),
          result_(result),
          output_(std::move(output), &result.output, PosixToolLauncher::maximumOutputBytes),
          error_(std::move(error), nullptr, 0) {
        if (timeout) {
            deadline_ = MonotonicClock::now() +
                        std::clamp(*timeout, std::chrono::milliseconds(0), longestTimeout);
        }
    }

    bool isOver() const { return over_; }

    /// Whether the stop still has to be told to this launch.
    bool awaitsStop() const { return !giveUp_; }

    /// The process is about to end: the tool is asked to terminate, unless it has been before, and
    /// from now on the launch no longer waits for as long as the tool likes.
    void stop() {
        const Instant now = MonotonicClock::now();
        if (result_.deadlinePassed) {
            giveUp_ = now;
            return;
        }
        giveUp_ = now + stopGrace;
        child_.terminate();
    }

    /// Does what is due by now.
    void keepSchedule() {
        const Instant now = MonotonicClock::now();
        const bool deadlineDue = deadline_ && now >= *deadline_;
        const bool giveUpDue = giveUp_ && (deadlineDue || now >= *giveUp_);
        if (!deadlineDue && !giveUpDue) {
            return;
        }
        // It may have exited while nobody looked.
        if (child_.hasExited()) {
            over_ = true;
            return;
        }
        if (deadlineDue) {
            deadline_.reset();
            result_.deadlinePassed = true;
            if (!giveUp_) {
                child_.terminate();
            }
        }
        if (giveUpDue) {
            child_.giveUp();
            over_ = true;
        }
    }

    /// Waits until the tool writes, exits or has something due, or the stop comes. Takes what the
    /// tool wrote and notices its exit.
    void waitForNews(int stopDescriptor) {
        const bool exitWakes = child_.exitDescriptor() >= 0;
        const bool stopWakes = !awaitsStop() || stopDescriptor >= 0;
        std::array<pollfd, 4> descriptors{{{output_.descriptor(), POLLIN, 0},
                                           {error_.descriptor(), POLLIN, 0},
                                           {child_.exitDescriptor(), POLLIN, 0},
                                           {awaitsStop() ? stopDescriptor : -1, POLLIN, 0}}};
        if (::poll(descriptors.data(), descriptors.size(), pollTimeout(exitWakes && stopWakes)) <
            0) {
            if (errno == EINTR) {
                return;
            }
            // Out of memory for the moment, say. What follows is harmless without news.
            std::this_thread::sleep_for(pollStep);
            for (pollfd& descriptor : descriptors) {
                descriptor.revents = POLLIN;
            }
        }
        const auto& [outputNews, errorNews, exitNews, stopNews] = descriptors;
        if (outputNews.revents != 0) {
            output_.readAvailable();
        }
        if (errorNews.revents != 0) {
            error_.readAvailable();
        }
        if (exitNews.revents != 0 || !exitWakes) {
            over_ = child_.hasExited();
        }
    }

    /// Completes the result.
    void finish() {
        output_.readRemaining();
        result_.terminationStatus = child_.terminationStatus();
    }

private:
    /// Milliseconds for `poll`, rounded up so that it cannot turn into a busy wait; -1: no limit.
    int pollTimeout(bool everythingWakes) const {
        std::optional<Instant> next = deadline_;
        if (giveUp_ && (!next || *giveUp_ < *next)) {
            next = giveUp_;
        }
        std::optional<std::chrono::milliseconds> wait;
        if (next) {
            wait = std::max(
                std::chrono::ceil<std::chrono::milliseconds>(*next - MonotonicClock::now()),
                std::chrono::milliseconds(0));
        }
        if (!everythingWakes) {
            wait = wait ? std::min(*wait, pollStep) : pollStep;
        }
        if (!wait) {
            return -1;
        }
        return static_cast<int>(std::min<std::chrono::milliseconds::rep>(
            wait->count(), std::numeric_limits<int>::max()));
    }

    ChildProcess& child_;
    ToolResult& result_;
    CapturedStream output_;
    CapturedStream error_;
    std::optional<Instant> deadline_;  ///< none once it has passed
    std::optional<Instant> giveUp_;    ///< only after a stop
    bool over_ = false;
};

}  // namespace

PosixToolLauncher::PosixToolLauncher() {
    // Before other threads are there that could change it meanwhile.
    childEnvironment();
    if (spawn_support::openPipe(stopPipe_) != 0) {
        stopPipe_ = {};
    }
}

void PosixToolLauncher::requestStop() {
    if (stopRequested_.exchange(true) || !stopPipe_.writeEnd.valid()) {
        return;
    }
    // Never read again, so that it wakes each launch that waits, however many there are.
    ssize_t written = -1;
    do {
        written = ::write(stopPipe_.writeEnd.get(), "", 1);
    } while (written < 0 && errno == EINTR);
}

ToolResult PosixToolLauncher::launch(const ToolRequest& request) {
    if (stopRequested_) {
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
    RunningTool tool(child, std::move(output.readEnd), std::move(error.readEnd), result,
                     request.timeout);
    // Held open here, they would keep the streams from ever ending.
    output.writeEnd.reset();
    error.writeEnd.reset();

    while (!tool.isOver()) {
        tool.waitForNews(stopPipe_.readEnd.get());
        if (!tool.isOver() && stopRequested_ && tool.awaitsStop()) {
            tool.stop();
        }
        if (!tool.isOver()) {
            tool.keepSchedule();
        }
    }
    tool.finish();
    return result;
}

}  // namespace tallowcrest
