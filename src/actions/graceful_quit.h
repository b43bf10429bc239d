#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/local_records.h"

namespace tallowcrest {

/// Asks an application to quit the way its own Quit command would, so that it can save its work
/// or ask about it first.
class GracefulQuit {
public:
    virtual ~GracefulQuit() = default;

    /// True only when the application was asked and the asking succeeded; it may still take its
    /// time, or decline. `members` are the processes that may be asked, in list order: where
    /// applications are found by their processes, no other one is. Nobody is asked in a synthetic
    /// group's name. Blocks while the application is asked; any thread but the main one, several
    /// calls at once.
    bool gracefulAppQuit(const std::string& name, const std::vector<ProcessSample>& members);

private:
    /// The platform's way of asking. `name` is not synthetic.
    virtual bool ask(const std::string& name, const std::vector<ProcessSample>& members) = 0;
};

/// Whether `name` is one that this system itself gives to programs of one kind, as "Python" is. No
/// application bears those names, so nobody could be asked by them. Pure; any thread.
bool isSyntheticGroupName(std::string_view name);

}  // namespace tallowcrest
