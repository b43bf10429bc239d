#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace tallowcrest {

/// Polls until `condition` is true. False when it is not true within a minute.
inline bool eventually(const std::function<bool()>& condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

}  // namespace tallowcrest
