#include "platform/linux/process_identity.h"

#include <unistd.h>

#include <array>
#include <limits>
#include <optional>

#include "platform/linux/kernel_file.h"
#include "sampling/proc_parser.h"

namespace tallowcrest {
namespace {

std::optional<ProcessStat> readStat(std::int64_t pid, const std::string& procRoot) {
    std::array<char, 1024> buffer;
    const KernelFile file(procRoot + "/" + std::to_string(pid) + "/stat");
    return parseProcessStat(file.read(buffer));
}

}  // namespace

std::optional<std::uint64_t> processStartTicks(std::int64_t pid, const std::string& procRoot) {
    const auto stat = readStat(pid, procRoot);
    return stat ? std::optional(stat->startTicks) : std::nullopt;
}

bool procfsShowsOwnPIDNamespace(const std::string& procRoot) {
    std::array<char, 4096> buffer;
    return parseSoleProcessID(KernelFile(procRoot + "/self/status").read(buffer)) == ::getpid();
}

bool isSameProcess(const ProcessSample& sample, const std::string& procRoot) {
    if (sample.pid < 1 || sample.pid > std::numeric_limits<std::int32_t>::max()) {
        return false;
    }
    const auto stat = readStat(sample.pid, procRoot);
    return stat && !stat->hasEnded() &&
           (sample.startTime == 0 || sample.startTime == stat->startTicks);
}

}  // namespace tallowcrest
