// A clipboard manager for the tests: takes over the text of a program that is about to end.
//
// clipboard_manager FILE
//
// Prints "ready" on standard error once programs can find it. Writes each text that it is asked to
// keep to FILE. Exits with 3 when it has lost its display.

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

template <class Reply>
using Owned = std::unique_ptr<Reply, Free>;

class ClipboardManager {
public:
    explicit ClipboardManager(std::string file) : file_(std::move(file)) {}

    int run() {
        if (xcb_connection_has_error(connection_) != 0) {
            return 2;
        }
        const xcb_screen_t* const screen =
            xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(connection_, window_, atom("CLIPBOARD_MANAGER"), XCB_CURRENT_TIME);
        xcb_flush(connection_);
        std::cerr << "ready" << std::endl;
        while (const Owned<xcb_generic_event_t> event{xcb_wait_for_event(connection_)}) {
            switch (event->response_type & 0x7FU) {
                case XCB_SELECTION_REQUEST:
                    fetch(*reinterpret_cast<const xcb_selection_request_event_t*>(event.get()));
                    break;
                case XCB_SELECTION_NOTIFY:
                    keep();
                    break;
                default:
                    break;
            }
            xcb_flush(connection_);
        }
        return 3;
    }

private:
    xcb_atom_t atom(const std::string& name) {
        const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            connection_,
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
            nullptr));
        return reply == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply->atom;
    }

    void fetch(const xcb_selection_request_event_t& request) {
        request_ = request;
        xcb_convert_selection(connection_, window_, atom("CLIPBOARD"), atom("UTF8_STRING"),
                              atom("KEPT"), XCB_CURRENT_TIME);
    }

    /// The requesting program waits for the answer before it ends.
    void keep() {
        constexpr std::uint32_t maximumWords = 1U << 20;
        const Owned<xcb_get_property_reply_t> text(
            xcb_get_property_reply(connection_,
                                   xcb_get_property(connection_, 1, window_, atom("KEPT"),
                                                    XCB_GET_PROPERTY_TYPE_ANY, 0, maximumWords),
                                   nullptr));
        if (text != nullptr) {
            std::ofstream(file_, std::ios::binary)
                .write(static_cast<const char*>(xcb_get_property_value(text.get())),
                       xcb_get_property_value_length(text.get()));
        }
        xcb_selection_notify_event_t answer{};
        answer.response_type = XCB_SELECTION_NOTIFY;
        answer.time = request_.time;
        answer.requestor = request_.requestor;
        answer.selection = request_.selection;
        answer.target = request_.target;
        answer.property = request_.property;
        xcb_send_event(connection_, 0, request_.requestor, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&answer));
    }

    std::string file_;
    xcb_connection_t* connection_ = xcb_connect(nullptr, nullptr);
    xcb_window_t window_ = xcb_generate_id(connection_);
    xcb_selection_request_event_t request_{};
};

}  // namespace

int main(int count, char** words) {
    return count == 2 ? ClipboardManager(words[1]).run() : 2;
}
