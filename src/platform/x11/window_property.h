#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <string>
#include <vector>

/// What windows say of themselves. Whoever owns a window may store anything there, so nothing is
/// taken to be of the type, the form or the length that it should have. Asking and hearing are two
/// steps, so that many windows cost one wait. The thread of the connection.
namespace tallowcrest {

/// Of a number of 32 bits, which is also the unit that replies tell their length in.
inline constexpr std::uint32_t bytesOfNumber = 4;

/// A property under way; to be heard once.
struct PropertyRequest {
    xcb_get_property_cookie_t cookie;
};

/// Asks for at most `maximumBytes`; what lies beyond is not transferred.
PropertyRequest askForProperty(xcb_connection_t* connection, xcb_window_t window,
                               xcb_atom_t property, std::uint32_t maximumBytes);

/// The property's numbers of 32 bits. Empty when it is of another type or form, is not there, or
/// its window is gone.
std::vector<std::uint32_t> hearNumbers(xcb_connection_t* connection, PropertyRequest request,
                                       xcb_atom_t type);

/// The same for a text of bytes, in the old encoding or in UTF-8, whose atom is `utf8Type`.
std::string hearText(xcb_connection_t* connection, PropertyRequest request, xcb_atom_t utf8Type);

/// The number of `name`; `XCB_NONE` when no program on this display has ever used it.
class AtomRequest {
public:
    AtomRequest(xcb_connection_t* connection, const std::string& name);
    xcb_atom_t hear();

private:
    xcb_connection_t* connection_;
    xcb_intern_atom_cookie_t cookie_;
};

}  // namespace tallowcrest
