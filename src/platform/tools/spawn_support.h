#pragma once

#include <spawn.h>
#include <sys/types.h>

#include "platform/base/unique_fd.h"

/// The few steps of launching a child that POSIX leaves to each system. Any thread.
namespace tallowcrest::spawn_support {

struct Pipe {
    UniqueFD readEnd;
    UniqueFD writeEnd;
};

/// Opens a pipe whose ends no child inherits by itself. 0, or the error number.
int openPipe(Pipe& pipe);

/// Lets the child keep only the descriptors that `actions` set up, including against descriptors
/// that other code opened without care, as far as the system has a means. Called after the other
/// actions were added. 0, or the error number.
int closeOtherDescriptors(posix_spawnattr_t& attributes, posix_spawn_file_actions_t& actions);

/// A descriptor that polls as readable once the child has exited; none where the system has no
/// such thing or no descriptor is left. The child must not have been waited for.
UniqueFD openExitDescriptor(pid_t child);

/// This process's environment, for a child to inherit.
char** environment();

}  // namespace tallowcrest::spawn_support
