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

/// Makes a display one that does not tell whose windows it shows.
inline const std::vector<std::string> tellsNoOwners{"-extension", "X-Resource"};

/// A display without a screen, and $DISPLAY with it, as long as this lives.
class PrivateDisplay {
public:
    explicit PrivateDisplay(const std::vector<std::string>& moreArguments = {});
    PrivateDisplay(const PrivateDisplay&) = delete;
    PrivateDisplay& operator=(const PrivateDisplay&) = delete;
    ~PrivateDisplay();

    StartedProgram& server() { return server_; }

private:
    StartedProgram server_;
};

/// The test's own eyes and hands on the display of $DISPLAY.
class TestDesktop {
public:
    TestDesktop();

    xcb_window_t root() const { return root_; }
    xcb_atom_t atom(const std::string& name) const;

    /// A window that nobody shows.
    xcb_window_t makeWindow() const;
    void destroy(xcb_window_t window) const;
    /// These two do not wait until that has happened. The number of the request among those of this
    /// connection; what an event carries is at least as great if it comes later.
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

    /// Sends a message of that type that holds nothing.
    void sendPlainMessage(xcb_window_t window, const std::string& type) const;
    /// Does what a task list does when the owner closes a window.
    void askManagerToClose(xcb_window_t window) const;
    /// A manager that has just started may have read an event and only looks at it with the next.
    void wakeManager() const { setNumbers(root_, "TEST_WAKE", "CARDINAL", {1}); }

    /// From now on the test itself plays the window manager, and a faultless one.
    void becomeManager();
    xcb_window_t managerWindow() const { return managerWindow_; }
    /// A window as those of well-behaved programs are.
    xcb_window_t makeWindowOf(std::uint32_t pid) const;
    void list(const std::vector<xcb_window_t>& windows) const;
    /// The messages to the manager that have arrived since it was asked last.
    std::vector<xcb_client_message_event_t> messages() const;

    /// Waits until the display has done all that it was told so far.
    void sync() const;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    xcb_window_t root_;
    xcb_window_t managerWindow_ = XCB_NONE;
};

/// A real window manager on the display of $DISPLAY, ready to manage.
class RealManager {
public:
    explicit RealManager(const TestDesktop& desktop);

    StartedProgram& program() { return program_; }

private:
    TemporaryFolder home_;
    StartedProgram program_;
};

}  // namespace tallowcrest
