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

    /// True when the application was asked successfully; it may then quit later, or not at all.
    /// `members` are the processes that may be asked, in list order: a platform that finds
    /// applications by their processes asks no others. For a synthetic group name, nothing is asked
    /// and the result is false. Blocks while the application is asked; any thread but the main one,
    /// several calls at once.
    bool gracefulAppQuit(const std::string& name, const std::vector<ProcessSample>& members);

private:
    /// The platform's way of asking. `name` is not synthetic.
    virtual bool ask(const std::string& name, const std::vector<ProcessSample>& members) = 0;
};

/// Whether `name` is a name that this program gives to a group of different programs, for example
/// "Python". No application has such a name, so none can be asked by it. Pure; any thread.
bool isSyntheticGroupName(std::string_view name);

}  // namespace tallowcrest
