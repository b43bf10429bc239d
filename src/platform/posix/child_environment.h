#pragma once

namespace tallowcrest {

/// What children inherit: this process's environment as it was at the first call, without the
/// desktop's leave for one window to come to the front. A copy, because the main thread lends such
/// a leave to the environment now and then, while other threads launch tools. Any thread; the first
/// call before others change the environment.
char* const* childEnvironment();

}  // namespace tallowcrest
