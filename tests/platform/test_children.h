#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tallowcrest {

/// A real child process for tests; killed and waited for at the end.
class TestChild {
public:
    /// Forks; the child runs `work`, which calls only what is safe after a fork, and then exits.
    explicit TestChild(const std::function<void()>& work);
    /// Runs a program.
    explicit TestChild(const std::vector<std::string>& arguments);
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

}  // namespace tallowcrest
