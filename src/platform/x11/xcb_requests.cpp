#include "platform/x11/xcb_requests.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace tallowcrest {
namespace {

using PropertyReply = XcbPointer<xcb_get_property_reply_t>;

PropertyReply receive(xcb_connection_t* connection, PropertyRequest request) {
    return PropertyReply(xcb_get_property_reply(connection, request.cookie, nullptr));
}

/// The length of the value, limited to the data that the reply really holds.
std::size_t valueSize(const xcb_get_property_reply_t& reply) {
    const std::size_t stated = std::size_t{reply.value_len} * (reply.format / 8U);
    return std::min(stated, std::size_t{reply.length} * bytesOfNumber);
}

}  // namespace

PropertyRequest requestProperty(xcb_connection_t* connection, xcb_window_t window,
                                xcb_atom_t property, std::uint32_t maximumBytes) {
    // The server counts in units of 4 bytes.
    return {xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0,
                             (maximumBytes + bytesOfNumber - 1) / bytesOfNumber)};
}

std::vector<std::uint32_t> receiveNumbers(xcb_connection_t* connection, PropertyRequest request,
                                          xcb_atom_t type) {
    const PropertyReply reply = receive(connection, request);
    if (!reply || reply->type != type || reply->format != 32) {
        return {};
    }
    std::vector<std::uint32_t> numbers(valueSize(*reply) / sizeof(std::uint32_t));
    if (!numbers.empty()) {
        std::memcpy(numbers.data(), xcb_get_property_value(reply.get()),
                    numbers.size() * sizeof(std::uint32_t));
    }
    return numbers;
}

std::string receiveText(xcb_connection_t* connection, PropertyRequest request,
                        xcb_atom_t utf8Type) {
    const PropertyReply reply = receive(connection, request);
    const bool isText = reply && reply->format == 8 && reply->type != XCB_NONE &&
                        (reply->type == XCB_ATOM_STRING || reply->type == utf8Type);
    return isText ? std::string(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                valueSize(*reply))
                  : std::string();
}

AtomRequest::AtomRequest(xcb_connection_t* connection, const std::string& name)
    : connection_(connection),
      cookie_(
          xcb_intern_atom(connection, 1, static_cast<std::uint16_t>(name.size()), name.c_str())) {}

xcb_atom_t AtomRequest::receive() {
    const XcbPointer<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection_, cookie_, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace tallowcrest
