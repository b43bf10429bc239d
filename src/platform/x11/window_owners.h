#pragma once

#include <xcb/res.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

#include "platform/x11/xcb_requests.h"

namespace tallowcrest {

/// Finds the local process that a window belongs to.
///
/// The X server knows which client created a window, and its answer is preferred: the pid that a
/// window states in a property may be wrong, on purpose or because its program runs in another pid
/// namespace. The property is used only if the server lacks the extension for this. Sending and
/// receiving are separate, so that many windows take one round trip. On the thread of the
/// connection.
class WindowOwners {
public:
    /// A request whose reply must be received once.
    struct Request {
        xcb_res_query_client_ids_cookie_t client{};  ///< used with the extension
        PropertyRequest process{};                   ///< used without it
        PropertyRequest machine{};
    };

    /// Takes one or two round trips to find out what the server supports.
    explicit WindowOwners(xcb_connection_t* connection);

    Request request(xcb_window_t window) const;

    /// The pid. Absent for programs of other machines, and when it is unknown. A window that no
    /// longer exists may still have an owner as long as its program is connected.
    std::optional<std::int64_t> receive(const Request& request) const;

private:
    std::optional<std::int64_t> receiveFromServer(const Request& request) const;
    std::optional<std::int64_t> receiveFromWindow(const Request& request) const;

    xcb_connection_t* connection_;
    bool serverKnowsProcesses_;
    xcb_atom_t processID_ = XCB_ATOM_NONE;
    xcb_atom_t utf8_ = XCB_ATOM_NONE;  ///< `XCB_ATOM_NONE` if never used on this display
};

}  // namespace tallowcrest
