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
#include "platform/x11/window_property.h"
#include "platform/x11/xcb_memory.h"

namespace tallowcrest {
namespace {

/// The words of the protocol that a desktop must know before anything can be asked of it.
struct Vocabulary {
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

Vocabulary vocabularyOf(xcb_connection_t* connection) {
    AtomRequest supported(connection, "_NET_SUPPORTED");
    AtomRequest managerCheck(connection, "_NET_SUPPORTING_WM_CHECK");
    AtomRequest clientList(connection, "_NET_CLIENT_LIST");
    AtomRequest closeWindow(connection, "_NET_CLOSE_WINDOW");
    AtomRequest protocols(connection, "WM_PROTOCOLS");
    AtomRequest deleteWindow(connection, "WM_DELETE_WINDOW");
    return {supported.hear(),   managerCheck.hear(), clientList.hear(),
            closeWindow.hear(), protocols.hear(),    deleteWindow.hear()};
}

bool holds(const std::vector<std::uint32_t>& numbers, std::uint32_t wanted) {
    return std::find(numbers.begin(), numbers.end(), wanted) != numbers.end();
}

/// A window of a member that can be asked.
struct Candidate {
    xcb_window_t window;
    const ProcessSample* member;
    std::optional<xcb_window_t> dialogOf;  ///< the window that it belongs to, if it is a dialog
};

/// Nobody else is served by the display as long as this lives. The display ends it as well when it
/// loses the connection, so the connection's time limit is its own.
class Standstill {
public:
    explicit Standstill(xcb_connection_t* connection) : connection_(connection) {
        xcb_grab_server(connection_);
    }
    Standstill(const Standstill&) = delete;
    Standstill& operator=(const Standstill&) = delete;
    ~Standstill() {
        xcb_ungrab_server(connection_);
        xcb_flush(connection_);
    }

private:
    xcb_connection_t* connection_;
};

/// One look at the desktop and one round of requests.
class Desktop {
public:
    explicit Desktop(const DisplayConnection& display)
        : connection_(display.get()),
          root_(display.root()),
          words_(vocabularyOf(connection_)),
          owners_(connection_) {}

    /// Whether a window manager is there that closes windows on request. What a manager stored on
    /// the root stays there when it ends; the window that it names to prove itself does not.
    bool hasManagerThatCloses() const {
        if (root_ == XCB_NONE || !words_.isComplete()) {
            return false;
        }
        const auto managers = numbers(root_, words_.managerCheck, 1, XCB_ATOM_WINDOW);
        return managers.size() == 1 &&
               numbers(managers[0], words_.managerCheck, 1, XCB_ATOM_WINDOW) == managers &&
               holds(numbers(root_, words_.supported, mostSupported, XCB_ATOM_ATOM),
                     words_.closeWindow);
    }

    /// How many windows of the members were asked.
    std::size_t ask(const std::vector<ProcessSample>& members,
                    const WindowCloseRequests::IsStillThere& isStillThere) const {
        // A desktop may have many windows. The display stands still for those few alone that were
        // found before, and not at all when there are none.
        const std::vector<Candidate> found = windowsOf(members);
        return found.empty() ? 0 : countAccepted(request(found, isStillThere));
    }

private:
    static constexpr std::size_t mostSupported = 4096;
    static constexpr std::size_t mostProtocols = 64;

    PropertyRequest askFor(xcb_window_t window, xcb_atom_t property, std::size_t count) const {
        return askForProperty(connection_, window, property,
                              static_cast<std::uint32_t>(count) * bytesOfNumber);
    }

    std::vector<std::uint32_t> numbers(xcb_window_t window, xcb_atom_t property, std::size_t count,
                                       xcb_atom_t type) const {
        return hearNumbers(connection_, askFor(window, property, count), type);
    }

    /// The windows, each once, whose process is a member.
    std::vector<Candidate> windowsOf(const std::vector<ProcessSample>& members) const {
        std::unordered_map<std::int64_t, const ProcessSample*> memberOf;
        for (const ProcessSample& member : members) {
            memberOf.emplace(member.pid, &member);
        }
        std::vector<std::pair<xcb_window_t, WindowOwners::Request>> requests;
        std::unordered_set<xcb_window_t> seen;
        for (const xcb_window_t window :
             numbers(root_, words_.clientList, WindowCloseRequests::mostWindows, XCB_ATOM_WINDOW)) {
            if (seen.insert(window).second) {
                requests.emplace_back(window, owners_.askFor(window));
            }
        }
        std::vector<Candidate> candidates;
        for (const auto& [window, request] : requests) {
            const std::optional<std::int64_t> owner = owners_.hear(request);
            const auto member = owner ? memberOf.find(*owner) : memberOf.end();
            if (member != memberOf.end()) {
                candidates.push_back({window, member->second, std::nullopt});
            }
        }
        return candidates;
    }

    /// Asks those that can be asked; the requests that have left for the display. The numbers of
    /// windows are given out again, so from the look at a window to the request none may go.
    std::vector<xcb_void_cookie_t> request(
        const std::vector<Candidate>& found,
        const WindowCloseRequests::IsStillThere& isStillThere) const {
        const Standstill standstill(connection_);
        const std::vector<Candidate> candidates = thoseThatCanBeAsked(found);
        std::unordered_set<xcb_window_t> windows;
        for (const Candidate& candidate : candidates) {
            windows.insert(candidate.window);
        }
        std::vector<xcb_void_cookie_t> requests;
        for (const Candidate& candidate : candidates) {
            if (isLeftToAnother(candidate, windows) || !isStillThere(*candidate.member)) {
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

    /// Whatever has left for the display counts unless it is refused, even if the time is up before
    /// the display says so: who has been asked may be asking the owner what to save, and must not
    /// pass for one that was left out.
    std::size_t countAccepted(const std::vector<xcb_void_cookie_t>& requests) const {
        std::size_t accepted = requests.size();
        for (const xcb_void_cookie_t request : requests) {
            const XcbMemory<xcb_generic_error_t> error(xcb_request_check(connection_, request));
            accepted -= error ? 1U : 0U;
        }
        return accepted;
    }

    /// A window may have gone and left its number to another program's. And a manager that cannot
    /// ask a window ends its program instead, which is no request.
    std::vector<Candidate> thoseThatCanBeAsked(const std::vector<Candidate>& found) const {
        struct Requests {
            WindowOwners::Request owner;
            PropertyRequest protocols;
            PropertyRequest dialogOf;
        };
        std::vector<Requests> requests;
        for (const Candidate& candidate : found) {
            requests.push_back({owners_.askFor(candidate.window),
                                askFor(candidate.window, words_.protocols, mostProtocols),
                                askFor(candidate.window, XCB_ATOM_WM_TRANSIENT_FOR, 1)});
        }
        std::vector<Candidate> kept;
        for (std::size_t index = 0; index < found.size(); ++index) {
            const auto owner = owners_.hear(requests[index].owner);
            const auto protocols =
                hearNumbers(connection_, requests[index].protocols, XCB_ATOM_ATOM);
            const auto parents =
                hearNumbers(connection_, requests[index].dialogOf, XCB_ATOM_WINDOW);
            if (owner == found[index].member->pid && holds(protocols, words_.deleteWindow)) {
                kept.push_back(found[index]);
                if (!parents.empty()) {
                    kept.back().dialogOf = parents[0];
                }
            }
        }
        return kept;
    }

    /// To close a dialog may mean to break off what it shows, as with a copy under way. The window
    /// that it belongs to knows better, and closes its dialogs itself.
    static bool isLeftToAnother(const Candidate& candidate,
                                const std::unordered_set<xcb_window_t>& windows) {
        return candidate.dialogOf && *candidate.dialogOf != candidate.window &&
               windows.count(*candidate.dialogOf) != 0;
    }

    /// The manager does the asking: it knows how, and what it keeps for itself of the window.
    xcb_void_cookie_t send(xcb_window_t window) const {
        // 1 would be a program that acts of its own accord; the owner has just confirmed this.
        constexpr std::uint32_t onBehalfOfTheOwner = 2;
        // The confirmation was no event of this connection, so there is no time to tell of it.
        constexpr std::uint32_t now = XCB_CURRENT_TIME;
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = words_.closeWindow;
        message.data.data32[0] = now;
        message.data.data32[1] = onBehalfOfTheOwner;
        return xcb_send_event_checked(
            connection_, 0, root_,
            XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
            reinterpret_cast<const char*>(&message));
    }

    xcb_connection_t* connection_;
    xcb_window_t root_;
    Vocabulary words_;
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
