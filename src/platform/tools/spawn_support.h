#pragma once

#include <spawn.h>
#include <sys/types.h>

#include "platform/base/unique_fd.h"

/// The steps of launching a child for which POSIX has no portable call. Any thread.
namespace tallowcrest::spawn_support {

struct Pipe {
    UniqueFD readEnd;
    UniqueFD writeEnd;
};

/// Opens a pipe with both ends close-on-exec. Returns 0 or the error number.
int openPipe(Pipe& pipe);

/// Makes the child close every descriptor that `actions` does not set up, also those that other
/// code opened without close-on-exec; without effect where the system has no means for it. Called
/// after all other actions are added. Returns 0 or the error number.
int closeOtherDescriptors(posix_spawnattr_t& attributes, posix_spawn_file_actions_t& actions);

/// A descriptor that polls as readable once the child has exited. Invalid where the system has none
/// or no descriptor is left. The child must not have been waited for.
UniqueFD openExitDescriptor(pid_t child);

/// The environment of this process.
char** environment();

}  // namespace tallowcrest::spawn_support
