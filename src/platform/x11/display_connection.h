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

/// The name under which this machine's programs put their windows on a display; empty when the
/// system does not tell.
std::string windowHostName();

/// A connection of one's own to the display that $DISPLAY names, for one short piece of work.
///
/// Whatever waits for the display, the building of the connection included, comes back with a
/// failure once the time is up, so a display that hangs holds nobody up. A display that ends is a
/// failure too and no signal. Displays of other machines are not connected to. Built, used and
/// destroyed by one thread, which may be any; several threads may each have one.
class DisplayConnection {
public:
    explicit DisplayConnection(std::chrono::milliseconds timeLimit);
    DisplayConnection(const DisplayConnection&) = delete;
    DisplayConnection& operator=(const DisplayConnection&) = delete;
    ~DisplayConnection();

    /// False from the first failure on: without a display, and when the time is up.
    bool isUsable() const;

    /// Null when there never was a connection.
    xcb_connection_t* get() const { return connection_.get(); }

    /// The root window of the display's own screen; `XCB_NONE` without a connection.
    xcb_window_t root() const { return root_; }

private:
    /// Keeps SIGPIPE from the thread, which the library's plain writes would bring upon it.
    class PipeSignalBlock {
    public:
        PipeSignalBlock();
        PipeSignalBlock(const PipeSignalBlock&) = delete;
        PipeSignalBlock& operator=(const PipeSignalBlock&) = delete;
        ~PipeSignalBlock();

    private:
        sigset_t pipeSignal_;
        sigset_t before_;
        bool wasPending_ = false;
    };

    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    bool watch(int socket, std::chrono::steady_clock::time_point deadline);

    PipeSignalBlock noPipeSignal_;
    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    xcb_window_t root_ = XCB_NONE;
    std::mutex lock_;
    std::condition_variable_any wake_;
    std::jthread watchdog_;  ///< gone before the connection that it watches
};

}  // namespace tallowcrest
