#pragma once

namespace tallowcrest {

/// Where the running program is on the recorded Mac.
inline constexpr const char* recordedExecutable =
    "/Users/o/My Apps/Tallowcrest Pro.app/Contents/MacOS/tallowcrest";

}  // namespace tallowcrest
