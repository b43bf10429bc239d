#pragma once

#include <Qt>

namespace tallowcrest {

/// Whether a widget that gets the focus for `reason` shows a focus ring. The ring is for keyboard
/// users and does not appear on a click. When a window or menu returns the focus, the ring stays as
/// it was `before`. Any thread.
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
