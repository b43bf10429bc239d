#pragma once

#include <functional>

#include "core/routes.h"

namespace tallowcrest {

class NotificationCenter;

/// The ports of `Integration`, all absent without a desktop. Main thread.
struct IntegrationPorts {
    NotificationCenter* notifications = nullptr;  ///< outlives the component
    /// Selects a page and brings the window to the front on it.
    std::function<void(AppRoute)> openRoute = {};
};

}  // namespace tallowcrest
