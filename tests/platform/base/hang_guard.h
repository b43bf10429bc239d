#pragma once

#include <chrono>

namespace tallowcrest {

/// The time after which a test of real threads is given up. Nothing comes near it unless it hangs.
inline constexpr std::chrono::seconds stuck{60};

/// For a queue whose threads need no set-up.
inline void noSetup() {}

}  // namespace tallowcrest
