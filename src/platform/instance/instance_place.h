#pragma once

#include <string>

namespace tallowcrest {

/// What distinguishes instances from each other. Empty means unknown.
struct InstanceEnvironment {
    std::string runtimeDirectory;  ///< XDG_RUNTIME_DIR
    std::string dataDirectory;     ///< the program's own; absolute
    std::string machine;           ///< any bytes, as of `thisMachine`
    /// The system's usual runtime directory of this user, for starts without XDG_RUNTIME_DIR.
    std::string usualRuntimeDirectory = {};
};

/// The environment of this process with its data in `dataDirectory`. Main thread.
InstanceEnvironment instanceEnvironment(std::string dataDirectory);

/// The directory of the guard's files and the base name that they share.
///
/// There is one instance for each user and data directory, so the name is derived from the data
/// directory. The files are in the runtime directory if there is one: it is local to the machine,
/// private to the user and emptied between logins, and supports locks and sockets. So two machines
/// that share a home directory do not exclude each other. A start without XDG_RUNTIME_DIR (from a
/// timer, or another user's shell) tries the usual runtime directory, to find an instance that was
/// started with it. Without a runtime directory the files are in the data directory, and because
/// that may be on a shared home, the name is also derived from the machine.
struct InstancePlace {
    std::string directory;  ///< absolute; need not exist yet. Empty when there is none
    std::string name;
};

/// Reads directories but creates none. Any thread.
InstancePlace instancePlace(const InstanceEnvironment& environment);

}  // namespace tallowcrest
