#pragma once

#include <string>
#include <vector>

namespace tallowcrest {

/// A copy of an environment for tools whose output this program reads: without the activation
/// token, which is meant for this process only, and with numbers in the form of the C locale. The
/// secure shell hands the locale on to other machines, so their tools use this form as well.
class ChildEnvironment {
public:
    /// `source` ends with a null pointer, as `environ` does; null means an empty environment.
    explicit ChildEnvironment(const char* const* source);
    ChildEnvironment(const ChildEnvironment&) = delete;
    ChildEnvironment& operator=(const ChildEnvironment&) = delete;

    /// In the same form. Valid as long as this object lives.
    char* const* variables() const { return pointers_.data(); }

private:
    std::vector<std::string> texts_;
    std::vector<char*> pointers_;
};

/// The environment that children inherit: that of this process at the first call. A copy, because
/// the main thread changes the activation token while other threads launch tools. Any thread; the
/// first call must come before any change of the environment.
char* const* childEnvironment();

}  // namespace tallowcrest
