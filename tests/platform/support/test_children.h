#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "core/local_records.h"

namespace tallowcrest {

/// A real child process for tests; killed and waited for at the end.
class TestChild {
public:
    /// Forks; the child runs `work`, which calls only what is safe after a fork, and then exits.
    explicit TestChild(const std::function<void()>& work);
    TestChild(TestChild&& other) noexcept : pid_(std::exchange(other.pid_, -1)) {}
    TestChild& operator=(TestChild&&) = delete;
    ~TestChild() { end(); }

    pid_t pid() const { return pid_; }

    /// Kills it and waits for it.
    void end();
    /// Kills it and leaves it unwaited for.
    void becomeZombie();

private:
    pid_t pid_ = -1;
};

/// What a child can do until it is killed: nothing, or its best to keep one core busy.
[[noreturn]] void waitForever();
[[noreturn]] void spin();

/// The row of that process, absent when it is not in the table.
std::optional<ProcessSample> rowOf(const std::vector<ProcessSample>& rows, std::int64_t pid);

}  // namespace tallowcrest
