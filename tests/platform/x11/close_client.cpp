// A program with windows for the tests to close. Prints one line for each event: "ready", "asked"
// for each window that it is asked to close, "pong" for the test's own message.
//
// close_client PID MACHINE [no-protocol] [ignores] [two-windows] [with-dialog]
//
// PID and MACHINE are what its windows state in their properties; a PID of "own" is the real one.
// Exits with 0 when its last window has been closed, and with 3 when it has lost its display.

#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <set>
#include <string>
#include <vector>

namespace {

class Client {
public:
    explicit Client(std::vector<std::string> words) : words_(std::move(words)) {}

    int run() {
        if (xcb_connection_has_error(connection_) != 0) {
            return 2;
        }
        const xcb_window_t first = open(XCB_NONE);
        if (has("two-windows")) {
            open(XCB_NONE);
        }
        if (has("with-dialog")) {
            open(first);
        }
        xcb_flush(connection_);
        say("ready");
        while (!windows_.empty()) {
            xcb_generic_event_t* const event = xcb_wait_for_event(connection_);
            if (event == nullptr) {
                return 3;
            }
            if ((event->response_type & 0x7FU) == XCB_CLIENT_MESSAGE) {
                handle(*reinterpret_cast<const xcb_client_message_event_t*>(event));
            }
            std::free(event);
        }
        xcb_disconnect(connection_);
        return 0;
    }

private:
    bool has(const std::string& word) const {
        return std::find(words_.begin(), words_.end(), word) != words_.end();
    }

    static void say(const std::string& line) { std::cout << line << std::endl; }

    xcb_atom_t atom(const std::string& name) {
        xcb_intern_atom_reply_t* const reply = xcb_intern_atom_reply(
            connection_,
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
            nullptr);
        const xcb_atom_t atom = reply == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply->atom;
        std::free(reply);
        return atom;
    }

    xcb_window_t open(xcb_window_t dialogOf) {
        const xcb_screen_t* const screen =
            xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        const xcb_window_t window = xcb_generate_id(connection_);
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 100, 100,
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        const std::uint32_t pid = words_[0] == "own"
                                      ? static_cast<std::uint32_t>(::getpid())
                                      : static_cast<std::uint32_t>(std::stoul(words_[0]));
        set(window, atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, {pid});
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLIENT_MACHINE,
                            XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(words_[1].size()),
                            words_[1].data());
        if (!has("no-protocol")) {
            set(window, atom("WM_PROTOCOLS"), XCB_ATOM_ATOM, {atom("WM_DELETE_WINDOW")});
        }
        if (dialogOf != XCB_NONE) {
            set(window, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, {dialogOf});
        }
        xcb_map_window(connection_, window);
        windows_.insert(window);
        return window;
    }

    void set(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
             const std::vector<std::uint32_t>& numbers) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, property, type, 32,
                            static_cast<std::uint32_t>(numbers.size()), numbers.data());
    }

    void handle(const xcb_client_message_event_t& message) {
        if (message.type == atom("TEST_PING")) {
            say("pong");
        } else if (message.type == atom("WM_PROTOCOLS") &&
                   message.data.data32[0] == atom("WM_DELETE_WINDOW")) {
            say("asked");
            if (!has("ignores")) {
                windows_.erase(message.window);
                xcb_destroy_window(connection_, message.window);
                xcb_flush(connection_);
            }
            // A dialog closes together with the window it belongs to.
            if (has("with-dialog")) {
                windows_.clear();
            }
        }
    }

    std::vector<std::string> words_;
    xcb_connection_t* connection_ = xcb_connect(nullptr, nullptr);
    std::set<xcb_window_t> windows_;
};

}  // namespace

int main(int count, char** arguments) {
    if (count < 3) {
        return 2;
    }
    return Client({arguments + 1, arguments + count}).run();
}
