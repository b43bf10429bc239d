#include "platform/x11/window_close_request.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "platform/x11/display_connection.h"
#include "platform/x11/window_property.h"

namespace tallowcrest {
namespace {

constexpr std::uint32_t bytesOfNumber = 4;

/// The words of the protocol that a desktop must know before anything can be asked of it.
struct Vocabulary {
    xcb_atom_t supported = XCB_ATOM_NONE;
    xcb_atom_t managerCheck = XCB_ATOM_NONE;
    xcb_atom_t clientList = XCB_ATOM_NONE;
    xcb_atom_t closeWindow = XCB_ATOM_NONE;
    xcb_atom_t processID = XCB_ATOM_NONE;
    xcb_atom_t protocols = XCB_ATOM_NONE;
    xcb_atom_t deleteWindow = XCB_ATOM_NONE;
    xcb_atom_t utf8 = XCB_ATOM_NONE;  ///< may stay unknown

    bool isComplete() const {
        return supported != XCB_ATOM_NONE && managerCheck != XCB_ATOM_NONE &&
               clientList != XCB_ATOM_NONE && closeWindow != XCB_ATOM_NONE &&
               processID != XCB_ATOM_NONE && protocols != XCB_ATOM_NONE &&
               deleteWindow != XCB_ATOM_NONE;
    }
};

Vocabulary vocabularyOf(xcb_connection_t* connection) {
    AtomRequest supported(connection, "_NET_SUPPORTED");
    AtomRequest managerCheck(connection, "_NET_SUPPORTING_WM_CHECK");
    AtomRequest clientList(connection, "_NET_CLIENT_LIST");
    AtomRequest closeWindow(connection, "_NET_CLOSE_WINDOW");
    AtomRequest processID(connection, "_NET_WM_PID");
    AtomRequest protocols(connection, "WM_PROTOCOLS");
    AtomRequest deleteWindow(connection, "WM_DELETE_WINDOW");
    AtomRequest utf8(connection, "UTF8_STRING");
    return {supported.hear(), managerCheck.hear(), clientList.hear(),   closeWindow.hear(),
            processID.hear(), protocols.hear(),    deleteWindow.hear(), utf8.hear()};
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

/// One look at the desktop and one round of requests.
class Desktop {
public:
    explicit Desktop(const DisplayConnection& display)
        : connection_(display.get()), root_(display.root()), words_(vocabularyOf(connection_)) {}

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

    std::vector<Candidate> candidatesAmong(const std::vector<ProcessSample>& members) const {
        std::vector<Candidate> candidates = windowsOf(members);
        keepThoseOfThisHostThatCanBeAsked(candidates);
        return candidates;
    }

    /// How many of them were asked.
    std::size_t ask(const std::vector<Candidate>& candidates,
                    const WindowCloseRequests::IsStillThere& isStillThere) const {
        std::unordered_set<xcb_window_t> windows;
        for (const Candidate& candidate : candidates) {
            windows.insert(candidate.window);
        }
        std::vector<xcb_void_cookie_t> requests;
        for (const Candidate& candidate : candidates) {
            if (!isLeftToAnother(candidate, windows) && isStillThere(*candidate.member)) {
                requests.push_back(send(candidate.window));
            }
        }
        std::size_t asked = 0;
        for (const xcb_void_cookie_t request : requests) {
            xcb_generic_error_t* const error = xcb_request_check(connection_, request);
            const bool isAccepted = error == nullptr;
            std::free(error);
            if (xcb_connection_has_error(connection_) != 0) {
                break;  // which would pass for success
            }
            asked += isAccepted ? 1U : 0U;
        }
        return asked;
    }

private:
    static constexpr std::size_t mostSupported = 4096;
    static constexpr std::size_t mostProtocols = 64;
    static constexpr std::uint32_t longestHostName = 256;

    PropertyRequest askFor(xcb_window_t window, xcb_atom_t property, std::size_t count) const {
        return askForProperty(connection_, window, property,
                              static_cast<std::uint32_t>(count) * bytesOfNumber);
    }

    std::vector<std::uint32_t> numbers(xcb_window_t window, xcb_atom_t property, std::size_t count,
                                       xcb_atom_t type) const {
        return hearNumbers(connection_, askFor(window, property, count), type);
    }

    /// The windows, each once, that bear the number of a member as their process.
    std::vector<Candidate> windowsOf(const std::vector<ProcessSample>& members) const {
        std::unordered_map<std::int64_t, const ProcessSample*> memberOf;
        for (const ProcessSample& member : members) {
            memberOf.emplace(member.pid, &member);
        }
        std::vector<std::pair<xcb_window_t, PropertyRequest>> requests;
        std::unordered_set<xcb_window_t> seen;
        for (const xcb_window_t window :
             numbers(root_, words_.clientList, WindowCloseRequests::mostWindows, XCB_ATOM_WINDOW)) {
            if (seen.insert(window).second) {
                requests.emplace_back(window, askFor(window, words_.processID, 1));
            }
        }
        std::vector<Candidate> candidates;
        for (const auto& [window, request] : requests) {
            const auto processID = hearNumbers(connection_, request, XCB_ATOM_CARDINAL);
            const auto member = processID.empty() ? memberOf.end() : memberOf.find(processID[0]);
            if (member != memberOf.end()) {
                candidates.push_back({window, member->second, std::nullopt});
            }
        }
        return candidates;
    }

    /// Another machine's process may bear the same number. And a manager that cannot ask a window
    /// ends its program instead, which is no request.
    void keepThoseOfThisHostThatCanBeAsked(std::vector<Candidate>& candidates) const {
        struct Requests {
            PropertyRequest machine;
            PropertyRequest protocols;
            PropertyRequest dialogOf;
        };
        std::vector<Requests> requests;
        for (const Candidate& candidate : candidates) {
            requests.push_back({askForProperty(connection_, candidate.window,
                                               XCB_ATOM_WM_CLIENT_MACHINE, longestHostName),
                                askFor(candidate.window, words_.protocols, mostProtocols),
                                askFor(candidate.window, XCB_ATOM_WM_TRANSIENT_FOR, 1)});
        }
        const std::string thisHost = windowHostName();
        std::vector<Candidate> kept;
        for (std::size_t index = 0; index < candidates.size(); ++index) {
            const std::string machine = hearText(connection_, requests[index].machine, words_.utf8);
            const auto protocols =
                hearNumbers(connection_, requests[index].protocols, XCB_ATOM_ATOM);
            const auto owners = hearNumbers(connection_, requests[index].dialogOf, XCB_ATOM_WINDOW);
            if (!owners.empty()) {
                candidates[index].dialogOf = owners[0];
            }
            if (!thisHost.empty() && machine == thisHost && holds(protocols, words_.deleteWindow)) {
                kept.push_back(std::move(candidates[index]));
            }
        }
        candidates = std::move(kept);
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
    return desktop.hasManagerThatCloses()
               ? desktop.ask(desktop.candidatesAmong(members), isStillThere_)
               : 0;
}

}  // namespace tallowcrest
