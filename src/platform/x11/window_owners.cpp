#include "platform/x11/window_owners.h"

#include <cstring>
#include <string>
#include <vector>

#include "platform/x11/display_connection.h"

namespace tallowcrest {
namespace {

constexpr std::uint32_t longestHostName = 256;

/// Whether the server can be asked for the pid of a client, which requires version 1.2.
bool supportsClientIDs(xcb_connection_t* connection) {
    const xcb_query_extension_reply_t* const extension =
        xcb_get_extension_data(connection, &xcb_res_id);
    if (extension == nullptr || extension->present == 0) {
        return false;
    }
    const XcbPointer<xcb_res_query_version_reply_t> version(
        xcb_res_query_version_reply(connection, xcb_res_query_version(connection, 1, 2), nullptr));
    return version && version->server_major == 1 && version->server_minor >= 2;
}

}  // namespace

WindowOwners::WindowOwners(xcb_connection_t* connection)
    : connection_(connection), serverKnowsProcesses_(supportsClientIDs(connection)) {
    if (!serverKnowsProcesses_) {
        AtomRequest processID(connection, "_NET_WM_PID");
        AtomRequest utf8(connection, "UTF8_STRING");
        processID_ = processID.receive();
        utf8_ = utf8.receive();
    }
}

WindowOwners::Request WindowOwners::request(xcb_window_t window) const {
    Request result;
    if (serverKnowsProcesses_) {
        // Any resource id in the range of a client identifies the client.
        const xcb_res_client_id_spec_t client{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        result.client = xcb_res_query_client_ids(connection_, 1, &client);
    } else {
        result.process = requestProperty(connection_, window, processID_, bytesOfNumber);
        result.machine =
            requestProperty(connection_, window, XCB_ATOM_WM_CLIENT_MACHINE, longestHostName);
    }
    return result;
}

std::optional<std::int64_t> WindowOwners::receive(const Request& request) const {
    return serverKnowsProcesses_ ? receiveFromServer(request) : receiveFromWindow(request);
}

/// Absent for programs that are connected over the network.
std::optional<std::int64_t> WindowOwners::receiveFromServer(const Request& request) const {
    const XcbPointer<xcb_res_query_client_ids_reply_t> reply(
        xcb_res_query_client_ids_reply(connection_, request.client, nullptr));
    struct Answer {
        xcb_res_client_id_value_t head;
        std::uint32_t process;
    };
    // One client and one kind of id were requested, and the reply must hold all of the answer.
    if (!reply || reply->num_ids != 1 || reply->length < sizeof(Answer) / bytesOfNumber) {
        return std::nullopt;
    }
    Answer answer{};
    std::memcpy(&answer, reply.get() + 1, sizeof answer);
    const bool isProcess = answer.head.spec.mask == XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID &&
                           answer.head.length == bytesOfNumber;
    return isProcess ? std::optional<std::int64_t>(answer.process) : std::nullopt;
}

/// The pid counts only with this machine's host name, as pids of other machines mean nothing here.
std::optional<std::int64_t> WindowOwners::receiveFromWindow(const Request& request) const {
    const std::vector<std::uint32_t> process =
        receiveNumbers(connection_, request.process, XCB_ATOM_CARDINAL);
    const std::string machine = receiveText(connection_, request.machine, utf8_);
    const std::string thisHost = hostName();
    const bool isLocal = !thisHost.empty() && machine == thisHost;
    return !process.empty() && isLocal ? std::optional<std::int64_t>(process[0]) : std::nullopt;
}

}  // namespace tallowcrest
