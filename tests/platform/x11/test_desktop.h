#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/platform/support/started_program.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

/// Arguments for a server that cannot report which process a window belongs to.
inline const std::vector<std::string> withoutClientIDs{"-extension", "X-Resource"};

/// Runs a virtual display and sets $DISPLAY during its lifetime.
class PrivateDisplay {
public:
    explicit PrivateDisplay(const std::vector<std::string>& arguments = {});
    PrivateDisplay(const PrivateDisplay&) = delete;
    PrivateDisplay& operator=(const PrivateDisplay&) = delete;
    ~PrivateDisplay();

    StartedProgram& server() { return server_; }

private:
    StartedProgram server_;
};

/// The test's own connection to the display.
class TestDesktop {
public:
    TestDesktop();

    xcb_window_t root() const { return root_; }
    xcb_atom_t atom(const std::string& name) const;

    /// Creates a window without mapping it.
    xcb_window_t makeWindow() const;
    void destroy(xcb_window_t window) const;
    /// These two do not wait until the server has processed the request. They return its sequence
    /// number; later events carry at least that number.
    std::uint16_t beginToDestroy(xcb_window_t window) const;
    std::uint16_t beginToSetNumber(xcb_window_t window, xcb_atom_t property,
                                   std::uint32_t number) const;

    void setNumbers(xcb_window_t window, const std::string& property, const std::string& type,
                    const std::vector<std::uint32_t>& numbers) const;
    void setAtoms(xcb_window_t window, const std::string& property,
                  const std::vector<std::string>& names) const;
    void setShorts(xcb_window_t window, const std::string& property, const std::string& type,
                   const std::vector<std::uint16_t>& numbers) const;
    void setText(xcb_window_t window, const std::string& property, const std::string& type,
                 const std::string& text) const;
    void remove(xcb_window_t window, const std::string& property) const;
    std::vector<std::uint32_t> numbers(xcb_window_t window, const std::string& property) const;

    /// Sends a message of this type without data.
    void sendPlainMessage(xcb_window_t window, const std::string& type) const;
    /// Sends what a task list sends when the user closes a window.
    void askManagerToClose(xcb_window_t window) const;
    /// A window manager that has just started may process an event only when the next one arrives.
    void wakeManager() const { setNumbers(root_, "TEST_WAKE", "CARDINAL", {1}); }

    /// Makes the test itself act as a conforming window manager.
    void becomeManager();
    xcb_window_t managerWindow() const { return managerWindow_; }
    /// Creates a window with the properties of a conforming program.
    xcb_window_t makeWindowOf(std::uint32_t pid) const;
    void list(const std::vector<xcb_window_t>& windows) const;
    /// The messages to the window manager that have arrived since the previous call.
    std::vector<xcb_client_message_event_t> messages() const;

    /// Waits until the server has processed all requests sent so far.
    void sync() const;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    xcb_window_t root_;
    xcb_window_t managerWindow_ = XCB_NONE;
};

/// A real window manager on the display, ready to manage windows.
class RealManager {
public:
    explicit RealManager(const TestDesktop& desktop);

    StartedProgram& program() { return program_; }

private:
    TemporaryFolder home_;
    StartedProgram program_;
};

}  // namespace tallowcrest
