#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tallowcrest {

/// The times that a process's load is worked out from. Any thread.
struct ProcfsClocks {
    using Reading = std::function<std::chrono::nanoseconds()>;
    using ProcessReading = std::function<std::optional<std::chrono::nanoseconds>(std::int32_t pid)>;

    Reading monotonic;  ///< stands still while the machine is suspended
    Reading sinceBoot;  ///< counts suspension too, like the kernel's start times
    /// Processor time that a process has used in its whole life, all its threads together; absent
    /// when no process bears that number. The number of the calling thread counts as that of its
    /// process. May be empty: the table then counts in the kernel's ticks.
    ProcessReading processTime;

    /// Those of the machine that this runs on. `processTime` is empty where it would not tell of
    /// the very processes that `procRoot` lists.
    static ProcfsClocks system(const std::string& procRoot);
};

}  // namespace tallowcrest
