#pragma once

#include <signal.h>
#include <xcb/xcb.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace tallowcrest {

/// The host name of this machine, which programs also state in their window properties. Empty when
/// unknown.
std::string hostName();

/// A private connection to the display that $DISPLAY names, for one short task.
///
/// Every call that waits for the X server, the constructor included, fails once the time limit has
/// passed, so a server that hangs blocks nobody for longer. A server that ends causes a failure
/// rather than a signal. Connects to local displays only. Constructed, used and destroyed on one
/// thread, which may be any; several threads may each have a connection.
class DisplayConnection {
public:
    explicit DisplayConnection(std::chrono::milliseconds timeLimit);
    DisplayConnection(const DisplayConnection&) = delete;
    DisplayConnection& operator=(const DisplayConnection&) = delete;
    ~DisplayConnection();

    /// False after the first failure: without a display, or once the time limit has passed.
    bool isUsable() const;

    /// Null when no connection was made.
    xcb_connection_t* get() const { return connection_.get(); }

    /// The root window of the screen that $DISPLAY names; `XCB_NONE` without a connection.
    xcb_window_t root() const { return root_; }

private:
    /// Blocks SIGPIPE on this thread, which writes of the library could raise.
    class SIGPIPEBlock {
    public:
        SIGPIPEBlock();
        SIGPIPEBlock(const SIGPIPEBlock&) = delete;
        SIGPIPEBlock& operator=(const SIGPIPEBlock&) = delete;
        ~SIGPIPEBlock();

    private:
        sigset_t signal_;
        sigset_t before_;
        bool wasPending_ = false;
    };

    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    bool watch(int socket, std::chrono::steady_clock::time_point deadline);

    SIGPIPEBlock sigpipeBlock_;
    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    xcb_window_t root_ = XCB_NONE;
    std::mutex lock_;
    std::condition_variable_any wake_;
    std::jthread watchdog_;  ///< joined before the members that it uses are destroyed
};

}  // namespace tallowcrest
