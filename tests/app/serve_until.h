#pragma once

#include <chrono>
#include <functional>

#include <gtest/gtest.h>

#include "platform/base/run_loop.h"

namespace tallowcrest {

/// Serves the main queue, which goes on although other threads wait, until it is so.
inline void serveUntil(RunLoop& loop, const std::function<bool()>& isSo) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    const auto timer = loop.scheduleRepeating(std::chrono::milliseconds(5), [&] {
        if (isSo() || std::chrono::steady_clock::now() > limit) {
            loop.stop(0);
        }
    });
    loop.run();
    EXPECT_TRUE(isSo());
}

}  // namespace tallowcrest
