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

using Outcome = TerminationResult::Outcome;

/// What is known of the process behind a descriptor.
enum class Sighting {
    reviewed,  ///< it is the one that was asked for
    another,   ///< its number had gone to another one by then
    unknown,   ///< the system does not tell
};

// The C library has names for these two calls, but in some releases they cannot be linked from C++.

/// None with `errno` on failure. No child inherits it; the kernel sees to that by itself.
UniqueFD openProcess(pid_t pid) {
    return UniqueFD(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0U)));
}

/// 0, or the error number.
int sendTerm(const UniqueFD& process) {
    return ::syscall(SYS_pidfd_send_signal, process.get(), SIGTERM, nullptr, 0U) == 0 ? 0 : errno;
}

/// Whether the number could not be opened because no process bears it. Some kernels name the case
/// apart in which a mere thread does.
bool meansNoProcess(int openError) {
    return openError == ESRCH || openError == EINVAL || openError == ENOENT;
}

/// Whether anything bears the number now. Only a question: no signal is ever sent to a bare number.
bool isInUse(pid_t pid) {
    return ::kill(pid, 0) == 0 || errno == EPERM;
}

/// Is asked after the descriptor was opened.
Sighting sight(pid_t pid, std::uint64_t startTime) {
    if (!procfsCountsAsWeDo()) {
        return Sighting::unknown;
    }
    if (startTime == 0) {
        return Sighting::reviewed;
    }
    const auto startTicks = processStartTicks(pid);
    if (!startTicks) {
        return Sighting::unknown;
    }
    return *startTicks == startTime ? Sighting::reviewed : Sighting::another;
}

/// The check of the start time goes by the number, and yet no signal can go astray between it and
/// `terminate`. The descriptor is opened first and stands for one process for good; that process
/// keeps its number until it has been waited for. So if it is still there while the start time is
/// read, the time is its own. If it is not, the time may be that of a later process, which may even
/// pass the check, but then the descriptor stands for one that is gone, and signals nobody.
class PidfdHeldProcess final : public HeldProcess {
public:
    PidfdHeldProcess(pid_t pid, std::uint64_t startTime) : pid_(pid), process_(openProcess(pid)) {
        if (!process_.valid()) {
            openError_ = errno;
        } else {
            sighting_ = sight(pid, startTime);
        }
    }

    TerminationResult terminate() override {
        if (!process_.valid()) {
            return meansNoProcess(openError_) ? withoutProcess() : failure(openError_);
        }
        switch (sighting_) {
            case Sighting::reviewed:
                return signal();
            case Sighting::another:
                return {Outcome::blocked, {}};
            case Sighting::unknown:
                break;
        }
        return withoutProcess();
    }

private:
    TerminationResult signal() const {
        switch (const int error = sendTerm(process_)) {
            case 0:
                return {Outcome::asked, {}};
            case EPERM:
                return {Outcome::refused, {}};
            case ESRCH:
                return withoutProcess();
            default:
                return failure(error);
        }
    }

    /// The process that was reviewed cannot be had: it has ended, unless another one bears its
    /// number.
    TerminationResult withoutProcess() const {
        return {isInUse(pid_) ? Outcome::blocked : Outcome::refused, {}};
    }

    static TerminationResult failure(int error) {
        return {Outcome::failed, std::generic_category().message(error)};
    }

    pid_t pid_;
    UniqueFD process_;
    int openError_ = 0;  ///< where there is no `process_`
    Sighting sighting_ = Sighting::unknown;
};

}  // namespace

std::unique_ptr<HeldProcess> PidfdProcessControl::hold(std::int64_t pid, std::uint64_t startTime) {
    return std::make_unique<PidfdHeldProcess>(static_cast<pid_t>(pid), startTime);
}

}  // namespace tallowcrest
