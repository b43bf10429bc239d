#include "platform/x11/window_owners.h"

#include <cstring>
#include <string>
#include <vector>

#include "platform/x11/display_connection.h"
#include "platform/x11/xcb_memory.h"

namespace tallowcrest {
namespace {

constexpr std::uint32_t longestHostName = 256;

/// Whether the display has the question for a client's process, which came with version 1.2.
bool tellsProcesses(xcb_connection_t* connection) {
    const xcb_query_extension_reply_t* const extension =
        xcb_get_extension_data(connection, &xcb_res_id);
    if (extension == nullptr || extension->present == 0) {
        return false;
    }
    const XcbMemory<xcb_res_query_version_reply_t> version(
        xcb_res_query_version_reply(connection, xcb_res_query_version(connection, 1, 2), nullptr));
    return version && version->server_major == 1 && version->server_minor >= 2;
}

}  // namespace

WindowOwners::WindowOwners(xcb_connection_t* connection)
    : connection_(connection), displayTells_(tellsProcesses(connection)) {
    if (!displayTells_) {
        AtomRequest processID(connection, "_NET_WM_PID");
        AtomRequest utf8(connection, "UTF8_STRING");
        processID_ = processID.hear();
        utf8_ = utf8.hear();
    }
}

WindowOwners::Request WindowOwners::askFor(xcb_window_t window) const {
    Request request;
    if (displayTells_) {
        // Any number out of a client's range stands for the client.
        const xcb_res_client_id_spec_t client{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        request.client = xcb_res_query_client_ids(connection_, 1, &client);
    } else {
        request.process = askForProperty(connection_, window, processID_, bytesOfNumber);
        request.machine =
            askForProperty(connection_, window, XCB_ATOM_WM_CLIENT_MACHINE, longestHostName);
    }
    return request;
}

std::optional<std::int64_t> WindowOwners::hear(const Request& request) const {
    return displayTells_ ? hearFromDisplay(request) : hearFromWindow(request);
}

/// Programs that come through the network have no number here.
std::optional<std::int64_t> WindowOwners::hearFromDisplay(const Request& request) const {
    const XcbMemory<xcb_res_query_client_ids_reply_t> reply(
        xcb_res_query_client_ids_reply(connection_, request.client, nullptr));
    struct Answer {
        xcb_res_client_id_value_t head;
        std::uint32_t process;
    };
    // One client and one kind of number were asked for. All of the answer must really have come.
    if (!reply || reply->num_ids != 1 || reply->length < sizeof(Answer) / bytesOfNumber) {
        return std::nullopt;
    }
    Answer answer{};
    std::memcpy(&answer, reply.get() + 1, sizeof answer);
    const bool isProcess = answer.head.spec.mask == XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID &&
                           answer.head.length == bytesOfNumber;
    return isProcess ? std::optional<std::int64_t>(answer.process) : std::nullopt;
}

/// Another machine's process may bear the same number as one of this.
std::optional<std::int64_t> WindowOwners::hearFromWindow(const Request& request) const {
    const std::vector<std::uint32_t> process =
        hearNumbers(connection_, request.process, XCB_ATOM_CARDINAL);
    const std::string machine = hearText(connection_, request.machine, utf8_);
    const std::string thisHost = windowHostName();
    const bool isOfThisHost = !thisHost.empty() && machine == thisHost;
    return !process.empty() && isOfThisHost ? std::optional<std::int64_t>(process[0])
                                            : std::nullopt;
}

}  // namespace tallowcrest
