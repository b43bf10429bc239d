#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tallowcrest {

/// The clocks from which the load of processes is computed. Any thread.
struct ProcfsClocks {
    using Clock = std::function<std::chrono::nanoseconds()>;
    using ProcessClock = std::function<std::optional<std::chrono::nanoseconds>(std::int32_t pid)>;

    Clock monotonic;  ///< stops while the machine is suspended
    Clock sinceBoot;  ///< includes suspension, as the start times of processes do
    /// The CPU time that all threads of a process have used since it started; absent when no
    /// process has that pid. The id of the calling thread gives the time of its process. May be
    /// empty: the table then uses the tick counters of the `stat` file.
    ProcessClock processTime;

    /// The clocks of this machine. `processTime` is empty where it cannot read the processes that
    /// `procRoot` lists.
    static ProcfsClocks system(const std::string& procRoot);
};

}  // namespace tallowcrest
