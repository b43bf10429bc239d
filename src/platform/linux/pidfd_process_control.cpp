#include "platform/linux/pidfd_process_control.h"

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include "platform/base/unique_fd.h"
#include "platform/linux/process_identity.h"

namespace tallowcrest {
namespace {

using Kind = TerminationResult::Kind;

/// Which process an opened pidfd refers to.
enum class Identity {
    expected,  ///< the one with the given start time
    other,     ///< another one that has reused the pid
    unknown,   ///< the start time could not be read
};

// Direct system calls, because some C library releases lack C++ linkage for their wrappers.

/// Invalid, with `errno` set, on failure. The kernel always makes it close-on-exec.
UniqueFD openProcess(pid_t pid) {
    return UniqueFD(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0U)));
}

/// Returns 0 or the error number.
int sendTerm(const UniqueFD& process) {
    return ::syscall(SYS_pidfd_send_signal, process.get(), SIGTERM, nullptr, 0U) == 0 ? 0 : errno;
}

/// Whether opening failed because no process has the pid. Some kernels report a thread's id with an
/// error of its own.
bool meansNoProcess(int openError) {
    return openError == ESRCH || openError == EINVAL || openError == ENOENT;
}

/// Whether any process or thread has the number now. Signal 0 only tests; no real signal is ever
/// sent to a pid.
bool isInUse(pid_t pid) {
    return ::kill(pid, 0) == 0 || errno == EPERM;
}

/// Call only after the pidfd was opened.
Identity identify(pid_t pid, std::uint64_t startTime) {
    if (!procfsShowsOwnPIDNamespace()) {
        return Identity::unknown;
    }
    if (startTime == 0) {
        return Identity::expected;
    }
    const auto startTicks = processStartTicks(pid);
    if (!startTicks) {
        return Identity::unknown;
    }
    return *startTicks == startTime ? Identity::expected : Identity::other;
}

/// The start time is read by pid, but the check does not race with `terminate`. The pidfd is opened
/// first and keeps referring to the same process. If that process still exists while the start time
/// is read, the pid is still its own, and so is the time. If it has ended, the time may be that of
/// another process with the reused pid, and may even match, but then signalling through the pidfd
/// reaches no process.
class PidfdHeldProcess final : public HeldProcess {
public:
    PidfdHeldProcess(pid_t pid, std::uint64_t startTime) : pid_(pid), process_(openProcess(pid)) {
        if (!process_.valid()) {
            openError_ = errno;
        } else {
            identity_ = identify(pid, startTime);
        }
    }

    TerminationResult terminate() override {
        if (!process_.valid()) {
            return meansNoProcess(openError_) ? notFound() : failure(openError_);
        }
        switch (identity_) {
            case Identity::expected:
                return signal();
            case Identity::other:
                return {Kind::blocked, {}};
            case Identity::unknown:
                break;
        }
        return notFound();
    }

private:
    TerminationResult signal() const {
        switch (const int error = sendTerm(process_)) {
            case 0:
                return {Kind::asked, {}};
            case EPERM:
                return {Kind::refused, {}};
            case ESRCH:
                return notFound();
            default:
                return failure(error);
        }
    }

    /// The outcome when the expected process cannot be signalled: blocked when its pid is in use by
    /// another one, else refused because it has ended.
    TerminationResult notFound() const {
        return {isInUse(pid_) ? Kind::blocked : Kind::refused, {}};
    }

    static TerminationResult failure(int error) {
        return {Kind::failed, std::generic_category().message(error)};
    }

    pid_t pid_;
    UniqueFD process_;
    int openError_ = 0;  ///< set when `process_` is invalid
    Identity identity_ = Identity::unknown;
};

}  // namespace

std::unique_ptr<HeldProcess> PidfdProcessControl::hold(std::int64_t pid, std::uint64_t startTime) {
    return std::make_unique<PidfdHeldProcess>(static_cast<pid_t>(pid), startTime);
}

}  // namespace tallowcrest
