#pragma once

#include <xcb/res.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

#include "platform/x11/window_property.h"

namespace tallowcrest {

/// Which process of this machine a window belongs to.
///
/// The display itself knows whose connection made a window, and is believed alone: what a window
/// says of its process may be any number, by intent or because its program sees other numbers than
/// this one does. Only a display that does not tell leaves no choice but to take the window's word.
/// Asking and hearing are two steps, so that many windows cost one wait. The thread of the
/// connection.
class WindowOwners {
public:
    /// A question under way; to be heard once.
    struct Request {
        xcb_res_query_client_ids_cookie_t client{};  ///< where the display tells
        PropertyRequest process{};                   ///< where it does not
        PropertyRequest machine{};
    };

    /// Waits for the display once or twice, to hear what it can tell.
    explicit WindowOwners(xcb_connection_t* connection);

    Request askFor(xcb_window_t window) const;

    /// The number of the process. Absent for programs of other machines, and when nobody tells. A
    /// window that is gone may still have an owner here, as long as its program is connected.
    std::optional<std::int64_t> hear(const Request& request) const;

private:
    std::optional<std::int64_t> hearFromDisplay(const Request& request) const;
    std::optional<std::int64_t> hearFromWindow(const Request& request) const;

    xcb_connection_t* connection_;
    bool displayTells_;
    xcb_atom_t processID_ = XCB_ATOM_NONE;
    xcb_atom_t utf8_ = XCB_ATOM_NONE;  ///< may stay unknown
};

}  // namespace tallowcrest
