#include "platform/x11/window_close_request.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/x11/display_connection.h"
#include "platform/x11/window_owners.h"
#include "platform/x11/xcb_requests.h"

namespace tallowcrest {
namespace {

/// The atoms of the window manager protocol; all are needed to ask anything.
struct Atoms {
    xcb_atom_t supported = XCB_ATOM_NONE;
    xcb_atom_t managerCheck = XCB_ATOM_NONE;
    xcb_atom_t clientList = XCB_ATOM_NONE;
    xcb_atom_t closeWindow = XCB_ATOM_NONE;
    xcb_atom_t protocols = XCB_ATOM_NONE;
    xcb_atom_t deleteWindow = XCB_ATOM_NONE;

    bool isComplete() const {
        return supported != XCB_ATOM_NONE && managerCheck != XCB_ATOM_NONE &&
               clientList != XCB_ATOM_NONE && closeWindow != XCB_ATOM_NONE &&
               protocols != XCB_ATOM_NONE && deleteWindow != XCB_ATOM_NONE;
    }
};

Atoms internAtoms(xcb_connection_t* connection) {
    AtomRequest supported(connection, "_NET_SUPPORTED");
    AtomRequest managerCheck(connection, "_NET_SUPPORTING_WM_CHECK");
    AtomRequest clientList(connection, "_NET_CLIENT_LIST");
    AtomRequest closeWindow(connection, "_NET_CLOSE_WINDOW");
    AtomRequest protocols(connection, "WM_PROTOCOLS");
    AtomRequest deleteWindow(connection, "WM_DELETE_WINDOW");
    return {supported.receive(),   managerCheck.receive(), clientList.receive(),
            closeWindow.receive(), protocols.receive(),    deleteWindow.receive()};
}

bool contains(const std::vector<std::uint32_t>& numbers, std::uint32_t wanted) {
    return std::find(numbers.begin(), numbers.end(), wanted) != numbers.end();
}

/// A window of a member.
struct Candidate {
    xcb_window_t window;
    const ProcessSample* member;
    std::optional<xcb_window_t> dialogOf;  ///< the window that it belongs to, if it is a dialog
};

/// Makes the X server process requests of this connection only. The grab also ends with the
/// connection, so the time limit of the connection holds for it too.
class ServerGrab {
public:
    explicit ServerGrab(xcb_connection_t* connection) : connection_(connection) {
        xcb_grab_server(connection_);
    }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;
    ~ServerGrab() {
        xcb_ungrab_server(connection_);
        xcb_flush(connection_);
    }

private:
    xcb_connection_t* connection_;
};

/// Examines the desktop and sends one round of requests.
class Desktop {
public:
    explicit Desktop(const DisplayConnection& display)
        : connection_(display.get()),
          root_(display.root()),
          atoms_(internAtoms(connection_)),
          owners_(connection_) {}

    /// Whether a window manager is running that closes windows on request. Its properties on the
    /// root window remain when it ends, but the check window that they name does not.
    bool hasManagerThatCloses() const {
        if (root_ == XCB_NONE || !atoms_.isComplete()) {
            return false;
        }
        const auto managers = numbers(root_, atoms_.managerCheck, 1, XCB_ATOM_WINDOW);
        return managers.size() == 1 &&
               numbers(managers[0], atoms_.managerCheck, 1, XCB_ATOM_WINDOW) == managers &&
               contains(numbers(root_, atoms_.supported, maximumSupported, XCB_ATOM_ATOM),
                        atoms_.closeWindow);
    }

    /// How many windows of the members were asked.
    std::size_t ask(const std::vector<ProcessSample>& members,
                    const WindowCloseRequests::IsStillThere& isStillThere) const {
        // A desktop may have many windows, so the members' are found before the server is grabbed.
        const std::vector<Candidate> found = windowsOf(members);
        return found.empty() ? 0 : countAccepted(sendRequests(found, isStillThere));
    }

private:
    static constexpr std::size_t maximumSupported = 4096;
    static constexpr std::size_t maximumProtocols = 64;

    PropertyRequest request(xcb_window_t window, xcb_atom_t property, std::size_t count) const {
        return requestProperty(connection_, window, property,
                               static_cast<std::uint32_t>(count) * bytesOfNumber);
    }

    std::vector<std::uint32_t> numbers(xcb_window_t window, xcb_atom_t property, std::size_t count,
                                       xcb_atom_t type) const {
        return receiveNumbers(connection_, request(window, property, count), type);
    }

    /// The windows whose process is a member, without duplicates.
    std::vector<Candidate> windowsOf(const std::vector<ProcessSample>& members) const {
        std::unordered_map<std::int64_t, const ProcessSample*> memberOf;
        for (const ProcessSample& member : members) {
            memberOf.emplace(member.pid, &member);
        }
        std::vector<std::pair<xcb_window_t, WindowOwners::Request>> requests;
        std::unordered_set<xcb_window_t> seen;
        for (const xcb_window_t window : numbers(
                 root_, atoms_.clientList, WindowCloseRequests::maximumWindows, XCB_ATOM_WINDOW)) {
            if (seen.insert(window).second) {
                requests.emplace_back(window, owners_.request(window));
            }
        }
        std::vector<Candidate> candidates;
        for (const auto& [window, request] : requests) {
            const std::optional<std::int64_t> owner = owners_.receive(request);
            const auto member = owner ? memberOf.find(*owner) : memberOf.end();
            if (member != memberOf.end()) {
                candidates.push_back({window, member->second, std::nullopt});
            }
        }
        return candidates;
    }

    /// Asks the windows that can be asked and returns the requests that were sent. Window ids are
    /// reused, so the server is grabbed from the check of a window until its request.
    std::vector<xcb_void_cookie_t> sendRequests(
        const std::vector<Candidate>& found,
        const WindowCloseRequests::IsStillThere& isStillThere) const {
        const ServerGrab grab(connection_);
        const std::vector<Candidate> candidates = askable(found);
        std::unordered_set<xcb_window_t> windows;
        for (const Candidate& candidate : candidates) {
            windows.insert(candidate.window);
        }
        std::vector<xcb_void_cookie_t> requests;
        for (const Candidate& candidate : candidates) {
            if (isDialogOfAny(candidate, windows) || !isStillThere(*candidate.member)) {
                continue;
            }
            const xcb_void_cookie_t request = send(candidate.window);
            if (xcb_flush(connection_) <= 0) {
                break;
            }
            requests.push_back(request);
        }
        return requests;
    }

    /// A sent request counts unless the server rejects it, even if the time limit passes before the
    /// reply: its program may already be asking the user what to save, and must not be treated as
    /// if it had not been asked.
    std::size_t countAccepted(const std::vector<xcb_void_cookie_t>& requests) const {
        std::size_t accepted = requests.size();
        for (const xcb_void_cookie_t request : requests) {
            const XcbPointer<xcb_generic_error_t> error(xcb_request_check(connection_, request));
            accepted -= error ? 1U : 0U;
        }
        return accepted;
    }

    /// Leaves out windows whose id now belongs to another program, and windows that do not support
    /// being asked, because the window manager would kill their programs instead.
    std::vector<Candidate> askable(const std::vector<Candidate>& found) const {
        struct Requests {
            WindowOwners::Request owner;
            PropertyRequest protocols;
            PropertyRequest dialogOf;
        };
        std::vector<Requests> requests;
        for (const Candidate& candidate : found) {
            requests.push_back({owners_.request(candidate.window),
                                request(candidate.window, atoms_.protocols, maximumProtocols),
                                request(candidate.window, XCB_ATOM_WM_TRANSIENT_FOR, 1)});
        }
        std::vector<Candidate> result;
        for (std::size_t index = 0; index < found.size(); ++index) {
            const auto owner = owners_.receive(requests[index].owner);
            const auto protocols =
                receiveNumbers(connection_, requests[index].protocols, XCB_ATOM_ATOM);
            const auto parents =
                receiveNumbers(connection_, requests[index].dialogOf, XCB_ATOM_WINDOW);
            if (owner == found[index].member->pid && contains(protocols, atoms_.deleteWindow)) {
                result.push_back(found[index]);
                if (!parents.empty()) {
                    result.back().dialogOf = parents[0];
                }
            }
        }
        return result;
    }

    /// Whether the window is a dialog of a window that is asked too. Closing a dialog may cancel an
    /// operation, such as a copy in progress; the window it belongs to handles its own dialogs.
    static bool isDialogOfAny(const Candidate& candidate,
                              const std::unordered_set<xcb_window_t>& windows) {
        return candidate.dialogOf && *candidate.dialogOf != candidate.window &&
               windows.count(*candidate.dialogOf) != 0;
    }

    /// Asks the window manager to close the window, as the protocol requires.
    xcb_void_cookie_t send(xcb_window_t window) const {
        // 2 is the source indication for direct user actions: the user has just confirmed this.
        constexpr std::uint32_t userAction = 2;
        // The confirmation was not an event of this connection, so it has no server time.
        constexpr std::uint32_t now = XCB_CURRENT_TIME;
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = atoms_.closeWindow;
        message.data.data32[0] = now;
        message.data.data32[1] = userAction;
        return xcb_send_event_checked(
            connection_, 0, root_,
            XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
            reinterpret_cast<const char*>(&message));
    }

    xcb_connection_t* connection_;
    xcb_window_t root_;
    Atoms atoms_;
    WindowOwners owners_;
};

}  // namespace

WindowCloseRequests::WindowCloseRequests(IsStillThere isStillThere,
                                         std::chrono::milliseconds timeLimit)
    : isStillThere_(std::move(isStillThere)), timeLimit_(timeLimit) {}

std::size_t WindowCloseRequests::askWindowsToClose(
    const std::vector<ProcessSample>& members) const {
    if (members.empty()) {
        return 0;
    }
    const DisplayConnection display(timeLimit_);
    if (!display.isUsable()) {
        return 0;
    }
    const Desktop desktop(display);
    return desktop.hasManagerThatCloses() ? desktop.ask(members, isStillThere_) : 0;
}

}  // namespace tallowcrest
