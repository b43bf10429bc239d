// Loaded by LD_PRELOAD into a program whose event loop waits by `poll`. Appends a line to the file
// that TALLOWCREST_TURNS names for each turn of its main thread, which is the time between two
// waits: the PID, when the turn began (of the real-time clock), how long it took and how much of
// that the thread has run, all in seconds.

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

double secondsOf(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

struct Instant {
    double real = secondsOf(CLOCK_REALTIME);
    double thread = secondsOf(CLOCK_THREAD_CPUTIME_ID);
};

int openLog() {
    const char* const file = std::getenv("TALLOWCREST_TURNS");
    return file == nullptr ? -1 : ::open(file, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
}

void writeTurn(const Instant& woken) {
    static const int log = openLog();
    const Instant now;
    if (log >= 0) {
        ::dprintf(log, "%d %.6f %.6f %.6f\n", static_cast<int>(::getpid()), woken.real,
                  now.real - woken.real, now.thread - woken.thread);
    }
}

}  // namespace

extern "C" int poll(pollfd* descriptors, nfds_t count, int timeout) {
    static bool hasWoken = false;
    static Instant woken;
    // A wait for one descriptor is for the display's answer and belongs to the turn. So does a poll
    // that does not wait.
    const bool endsTurn = count >= 2 && timeout != 0 && ::gettid() == ::getpid();
    if (endsTurn && hasWoken) {
        writeTurn(woken);
    }
    constexpr int thousand = 1000;
    const timespec limit{timeout / thousand, timeout % thousand * thousand * thousand};
    const int result = ::ppoll(descriptors, count, timeout < 0 ? nullptr : &limit, nullptr);
    if (endsTurn) {
        hasWoken = true;
        woken = Instant();
    }
    return result;
}
