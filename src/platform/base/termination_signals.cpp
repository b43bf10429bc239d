#include "platform/base/termination_signals.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <utility>

namespace tallowcrest {
namespace {

constexpr std::array numbers{SIGINT, SIGTERM, SIGHUP};
constexpr int patienceInMilliseconds = 60000;

constexpr char signalArrived = 's';
constexpr char watchEnds = 'e';

// A handler reaches nothing but what has static storage.
std::atomic<int> pipeOfSignals = -1;
std::atomic<int> firstSignal = 0;
static_assert(std::atomic<int>::is_always_lock_free);

void handle(int number) {
    const int error = errno;
    int none = 0;
    firstSignal.compare_exchange_strong(none, number);
    [[maybe_unused]] const ssize_t written = ::write(pipeOfSignals, &signalArrived, 1);
    errno = error;
}

void setAction(int number, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(number, &action, nullptr);
}

void endBy(int number) {
    setAction(number, SIG_DFL);
    ::raise(number);
}

/// Blocks. Returns `watchEnds` also when the pipe cannot be read.
char nextByte(int pipe) {
    char byte = watchEnds;
    ssize_t count = -1;
    do {
        count = ::read(pipe, &byte, 1);
    } while (count < 0 && errno == EINTR);
    return count == 1 ? byte : watchEnds;
}

void watch(int pipe, const std::function<void()>& asked) {
    if (nextByte(pipe) != signalArrived) {
        return;
    }
    asked();
    pollfd next{pipe, POLLIN, 0};
    int ready = -1;
    do {
        ready = ::poll(&next, 1, patienceInMilliseconds);
    } while (ready < 0 && errno == EINTR);
    if (ready != 1 || nextByte(pipe) == signalArrived) {
        endBy(firstSignal);
    }
}

}  // namespace

TerminationSignals::TerminationSignals(std::function<void()> asked) {
    std::array<int, 2> ends{-1, -1};
    if (::pipe(ends.data()) != 0) {
        // The signals end the program at once, then.
        return;
    }
    readEnd_ = UniqueFD(ends[0]);
    writeEnd_ = UniqueFD(ends[1]);
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    firstSignal = 0;
    pipeOfSignals = writeEnd_.get();
    thread_ =
        std::thread([pipe = readEnd_.get(), asked = std::move(asked)] { watch(pipe, asked); });
    for (const int number : numbers) {
        struct sigaction before {};
        if (::sigaction(number, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
            setAction(number, handle);
        }
    }
}

TerminationSignals::~TerminationSignals() {
    stopWatching();
}

void TerminationSignals::endBySignal() {
    stopWatching();
    if (const int number = firstSignal) {
        endBy(number);
    }
}

void TerminationSignals::stopWatching() {
    if (!thread_.joinable()) {
        return;
    }
    for (const int number : numbers) {
        struct sigaction current {};
        if (::sigaction(number, nullptr, &current) == 0 && current.sa_handler == handle) {
            setAction(number, SIG_DFL);
        }
    }
    [[maybe_unused]] const ssize_t written = ::write(writeEnd_.get(), &watchEnds, 1);
    thread_.join();
}

}  // namespace tallowcrest
