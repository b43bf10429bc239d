#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace tallowcrest {

/// Asks again and again until `isSo`; false when it is not so before a generous limit.
inline bool eventually(const std::function<bool()>& isSo) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!isSo()) {
        if (std::chrono::steady_clock::now() > limit) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

}  // namespace tallowcrest
