#include <fcntl.h>
#include <features.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/tools/spawn_support.h"

namespace tallowcrest::spawn_support {

int openPipe(Pipe& pipe) {
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        return errno;
    }
    pipe.readEnd = UniqueFD(ends[0]);
    pipe.writeEnd = UniqueFD(ends[1]);
    return 0;
}

int closeOtherDescriptors([[maybe_unused]] posix_spawnattr_t& attributes,
                          [[maybe_unused]] posix_spawn_file_actions_t& actions) {
#if defined(__GLIBC__) && __GLIBC_PREREQ(2, 34)
    return ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
#else
    return 0;
#endif
}

UniqueFD openExitDescriptor(pid_t child) {
    // A direct system call, because older C libraries have no wrapper for it.
    return UniqueFD(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
}

char** environment() {
    return environ;
}

}  // namespace tallowcrest::spawn_support
