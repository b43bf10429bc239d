#include "tests/platform/files/apart.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <stdexcept>

#include "platform/base/unique_fd.h"

namespace tallowcrest::apart {
namespace {

constexpr int notPossible = 77;

void writeText(const char* path, const std::string& text) {
    const UniqueFD file(::open(path, O_WRONLY | O_CLOEXEC));
    static_cast<void>(::write(file.get(), text.data(), text.size()));
}

bool mayMount() {
    const uid_t user = ::getuid();
    const gid_t group = ::getgid();
    if (::unshare(CLONE_NEWNS) != 0) {
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
            return false;
        }
        writeText("/proc/self/setgroups", "deny");
        writeText("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
        writeText("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
    }
    return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

/// In a user namespace that maps no account, root has no rights over the files of root.
bool isOrdinary() {
    return ::getuid() != 0 || ::unshare(CLONE_NEWUSER) == 0;
}

[[noreturn]] void child(Rights rights, const std::function<std::string()>& work, int output) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (!(rights == Rights::mounts ? mayMount() : isOrdinary())) {
        ::_exit(notPossible);
    }
    std::string text;
    try {
        text = work();
    } catch (const std::exception& error) {
        text = error.what();
    }
    for (std::size_t at = 0; at < text.size();) {
        const ssize_t written = ::write(output, text.data() + at, text.size() - at);
        if (written <= 0) {
            break;
        }
        at += static_cast<std::size_t>(written);
    }
    ::_exit(0);
}

void mountOrThrow(const char* source, const std::string& place, const char* type,
                  unsigned long flags, const char* options) {
    if (::mount(source, place.c_str(), type, flags, options) != 0) {
        throw std::runtime_error("cannot mount " + place + ": " + std::strerror(errno));
    }
}

}  // namespace

Run run(Rights rights, const std::function<std::string()>& work) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        return {false, "no pipe", ""};
    }
    const UniqueFD input(ends[0]);
    UniqueFD output(ends[1]);
    const pid_t process = ::fork();
    if (process == 0) {
        child(rights, work, output.get());
    }
    output.reset();
    Run result{true, "", ""};
    std::array<char, 4096> part{};
    for (ssize_t length = 0; (length = ::read(input.get(), part.data(), part.size())) > 0;) {
        result.text.append(part.data(), static_cast<std::size_t>(length));
    }
    int status = 0;
    ::waitpid(process, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == notPossible) {
        return {false, "this account may not create the namespace", ""};
    }
    if (!WIFEXITED(status)) {
        result.text = "ended by a signal";
    }
    return result;
}

void bindMount(const std::string& from, const std::string& to) {
    mountOrThrow(from.c_str(), to, nullptr, MS_BIND, nullptr);
}

void mountMemory(const std::string& folder, const std::string& options) {
    mountOrThrow("none", folder, "tmpfs", MS_NOSUID | MS_NODEV, options.c_str());
}

}  // namespace tallowcrest::apart
