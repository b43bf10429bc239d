#pragma once

#include <string>

namespace tallowcrest {

/// What tells one instance from another. Empty means not known.
struct InstanceEnvironment {
    std::string runtimeDirectory;  ///< XDG_RUNTIME_DIR
    std::string dataDirectory;     ///< the program's own; absolute
    std::string machineName;
    /// Where the system keeps this user's runtime directory when the environment does not say.
    std::string usualRuntimeDirectory = {};
};

/// That of this process with its data in `dataDirectory`. Main thread.
InstanceEnvironment instanceEnvironment(std::string dataDirectory);

/// What the desktop gave this start so that a window of it may come to the front; empty when it
/// gave nothing. Main thread.
std::string desktopActivationToken();

/// Where the guard's files lie, and the name that they have in common.
///
/// Instances are those of one user over one data directory, so the name is made of that directory.
/// The files lie in the runtime directory where there is one: it is local to the machine, private
/// to the user and emptied between logins, and locks and sockets are promised to work there. A home
/// that two machines share then never keeps the second from watching itself. A start that was not
/// told of it (from a timer, or another user's shell) looks where it usually is, lest it miss the
/// instance that was. Without a runtime directory they lie in the data directory, and for the sake
/// of such a home their name is made of the machine's too.
struct InstancePlace {
    std::string directory;  ///< absolute; need not exist yet. Empty when there is none
    std::string name;
};

/// Looks at directories and creates none. Any thread.
InstancePlace instancePlace(const InstanceEnvironment& environment);

}  // namespace tallowcrest
