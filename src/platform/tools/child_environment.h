#pragma once

#include <string>
#include <vector>

namespace tallowcrest {

/// A copy of an environment without the desktop's leave for one window to come to the front, which
/// is for this process alone.
class ChildEnvironment {
public:
    /// `from` ends with a null pointer, as `environ` does; null itself is an empty environment.
    explicit ChildEnvironment(const char* const* from);
    ChildEnvironment(const ChildEnvironment&) = delete;
    ChildEnvironment& operator=(const ChildEnvironment&) = delete;

    /// In the same form, for as long as this object lives.
    char* const* variables() const { return pointers_.data(); }

private:
    std::vector<std::string> texts_;
    std::vector<char*> pointers_;
};

/// What children inherit: this process's environment as it was at the first call. A copy, because
/// the main thread lends such a leave to the environment now and then, while other threads launch
/// tools. Any thread; the first call before others change the environment.
char* const* childEnvironment();

}  // namespace tallowcrest
