#pragma once

#include <cstdlib>
#include <string>

namespace tallowcrest {

/// A variable of this process's environment, restored by the destructor.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const std::string& value) : name_(name) {
        if (const char* const before = std::getenv(name)) {
            before_ = before;
            wasSet_ = true;
        }
        ::setenv(name, value.c_str(), 1);
    }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;
    ~ScopedVariable() {
        if (wasSet_) {
            ::setenv(name_, before_.c_str(), 1);
        } else {
            ::unsetenv(name_);
        }
    }

private:
    const char* name_;
    std::string before_;
    bool wasSet_ = false;
};

}  // namespace tallowcrest
