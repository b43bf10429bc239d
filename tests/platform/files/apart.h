#pragma once

#include <functional>
#include <string>

/// Work in a process of its own, with rights that the tests' process does not have or has.
namespace tallowcrest::apart {

enum class Rights {
    mounts,    ///< may mount, which nobody else sees
    ordinary,  ///< those of an account that may not read everything, also where the tests run as
               ///< root
};

struct Run {
    bool isPossible = false;
    std::string reason;  ///< why it is not possible, else empty
    std::string text;    ///< what the work returned; "ended by a signal" when one ended it
};

Run run(Rights rights, const std::function<std::string()>& work);

/// For use inside `run`. Throws when it is not possible.
void bindMount(const std::string& from, const std::string& to);
void mountMemory(const std::string& folder, const std::string& options);

}  // namespace tallowcrest::apart
