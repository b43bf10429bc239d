#include <crt_externs.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/tools/spawn_support.h"

namespace tallowcrest::spawn_support {

int openPipe(Pipe& pipe) {
    std::array<int, 2> ends{-1, -1};
    if (::pipe(ends.data()) != 0) {
        return errno;
    }
    pipe.readEnd = UniqueFD(ends[0]);
    pipe.writeEnd = UniqueFD(ends[1]);
    for (const int end : ends) {
        if (::fcntl(end, F_SETFD, FD_CLOEXEC) != 0) {
            return errno;
        }
    }
    return 0;
}

int closeOtherDescriptors(posix_spawnattr_t& attributes,
                          [[maybe_unused]] posix_spawn_file_actions_t& actions) {
    short flags = 0;
    if (const int error = ::posix_spawnattr_getflags(&attributes, &flags); error != 0) {
        return error;
    }
    return ::posix_spawnattr_setflags(&attributes,
                                      static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT));
}

UniqueFD openExitDescriptor([[maybe_unused]] pid_t child) {
    return {};
}

char** environment() {
    return *::_NSGetEnviron();
}

}  // namespace tallowcrest::spawn_support
