#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/local_records.h"
#include "sampling/tool_launcher.h"

/// Helpers for tests with real child processes.
namespace tallowcrest {

/// A forked child process; killed and waited for by the destructor.
class TestChild {
public:
    /// Forks. The child runs `work`, which may call only what is safe after a fork, and exits.
    explicit TestChild(const std::function<void()>& work);
    TestChild(TestChild&& other) noexcept : pid_(std::exchange(other.pid_, -1)) {}
    TestChild& operator=(TestChild&&) = delete;
    ~TestChild() { end(); }

    pid_t pid() const { return pid_; }

    /// Kills it and waits for it.
    void end();
    /// Kills it without waiting for it.
    void becomeZombie();

private:
    pid_t pid_ = -1;
};

/// Work for a child that runs until it is killed: it sleeps, or keeps one core busy.
[[noreturn]] void waitForever();
[[noreturn]] void spin();

/// Runs `work` in a child and returns its exit status; absent when a signal ended the child.
std::optional<int> statusOfChild(const std::function<int()>& work);

/// The row of the process; absent when it is not in the table.
std::optional<ProcessSample> rowOf(const std::vector<ProcessSample>& rows, std::int64_t pid);

/// A request that runs a shell script as the tool.
ToolRequest shellTool(const std::string& script,
                      std::optional<std::chrono::milliseconds> timeout = std::nullopt);

/// Whether the process is running; false for a zombie.
bool isRunning(pid_t pid);

/// Whether this process has a child, running or not, that has not been waited for.
bool hasChild();

/// How many descriptors this process has open.
int openDescriptorCount();

}  // namespace tallowcrest
