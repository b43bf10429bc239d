#pragma once

#include <Qt>

namespace tallowcrest {

/// Whether a widget that the keyboard came to for `reason` shows it with a ring. The ring answers a
/// person who works with the keyboard; on a click it would only be noise. A window or menu that
/// gives the keyboard back leaves the ring as it was `before`. Any thread.
constexpr bool showsFocusRing(Qt::FocusReason reason, bool before) {
    switch (reason) {
        case Qt::MouseFocusReason:
            return false;
        case Qt::ActiveWindowFocusReason:
        case Qt::PopupFocusReason:
            return before;
        default:
            return true;
    }
}

}  // namespace tallowcrest
