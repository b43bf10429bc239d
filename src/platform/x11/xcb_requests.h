#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

/// Requests to an X server and their replies. Any program may store anything in a window property,
/// so the type, format and length of each reply are checked. Sending a request and receiving its
/// reply are separate calls, so that many requests take one round trip. On the thread of the
/// connection.
namespace tallowcrest {

struct FreeXcbMemory {
    void operator()(void* memory) const { std::free(memory); }
};

/// Owns memory that xcb returns to the caller: replies, errors and names.
template <typename T>
using XcbPointer = std::unique_ptr<T, FreeXcbMemory>;

/// The size of a 32-bit number, which is also the unit of lengths in replies.
inline constexpr std::uint32_t bytesOfNumber = 4;

/// A request whose reply must be received once.
struct PropertyRequest {
    xcb_get_property_cookie_t cookie;
};

/// Requests at most `maximumBytes` of a property.
PropertyRequest requestProperty(xcb_connection_t* connection, xcb_window_t window,
                                xcb_atom_t property, std::uint32_t maximumBytes);

/// The 32-bit numbers of the property. Empty when it does not exist, is of another type or format,
/// or the window does not exist.
std::vector<std::uint32_t> receiveNumbers(xcb_connection_t* connection, PropertyRequest request,
                                          xcb_atom_t type);

/// The same for a property of type STRING or UTF-8, whose atom is `utf8Type`.
std::string receiveText(xcb_connection_t* connection, PropertyRequest request, xcb_atom_t utf8Type);

/// A request for the atom of `name`, whose reply must be received once.
class AtomRequest {
public:
    AtomRequest(xcb_connection_t* connection, const std::string& name);
    /// `XCB_NONE` when no program on this display has used the name yet.
    xcb_atom_t receive();

private:
    xcb_connection_t* connection_;
    xcb_intern_atom_cookie_t cookie_;
};

}  // namespace tallowcrest
