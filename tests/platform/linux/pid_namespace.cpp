#include "tests/platform/linux/pid_namespace.h"

#include <linux/sched.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>

namespace tallowcrest::pid_namespace {
namespace {

constexpr int noNamespace = 255;
constexpr int noProcfs = 254;
constexpr int endedBySignal = 253;

bool mountProcfs() {
    return ::unshare(CLONE_NEWNS) == 0 &&
           ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount("proc", "/proc", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr) == 0;
}

int statusOf(pid_t child) {
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status)
                                                                      : endedBySignal;
}

}  // namespace

Run run(Procfs procfs, const std::function<int()>& work) {
    const pid_t outer = ::fork();
    if (outer == 0) {
        // When process 1 of a namespace ends, the kernel kills all others in it.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::unshare(CLONE_NEWPID) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWPID) != 0) {
            ::_exit(noNamespace);
        }
        const pid_t first = ::fork();
        if (first == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            ::_exit(procfs == Procfs::own && !mountProcfs() ? noProcfs : work());
        }
        ::_exit(statusOf(first));
    }
    switch (const int status = statusOf(outer)) {
        case noNamespace:
            return {false, "this account may not create a pid namespace", -1};
        case noProcfs:
            return {false, "this account may not mount a /proc for its namespace", -1};
        case endedBySignal:
            return {true, "", -1};
        default:
            return {true, "", status};
    }
}

pid_t startAs(pid_t pid, const std::function<int()>& work) {
    clone_args arguments{};
    arguments.exit_signal = SIGCHLD;
    arguments.set_tid = reinterpret_cast<std::uintptr_t>(&pid);
    arguments.set_tid_size = 1;
    const long child = ::syscall(SYS_clone3, &arguments, sizeof arguments);
    if (child == 0) {
        while (!work) {
            ::pause();
        }
        ::_exit(work());
    }
    return static_cast<pid_t>(child);
}

void killAndWait(pid_t child) {
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
}

}  // namespace tallowcrest::pid_namespace
