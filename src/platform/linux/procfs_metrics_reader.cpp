#include "platform/linux/procfs_metrics_reader.h"

#include <dirent.h>
#include <fcntl.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

#include "core/text.h"
#include "platform/base/environment.h"
#include "platform/base/home_volume.h"
#include "platform/base/unique_fd.h"
#include "sampling/memory.h"
#include "sampling/proc_parser.h"

namespace tallowcrest {
namespace {

struct CloseDirectory {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

/// The memory that all zram devices use. They are listed each time because they are added and
/// removed at run time; one that cannot be read counts as 0.
std::uint64_t readZramBytes(const std::string& blockDirectory) {
    const std::unique_ptr<DIR, CloseDirectory> directory(::opendir(blockDirectory.c_str()));
    if (!directory) {
        return 0;
    }
    std::uint64_t bytes = 0;
    while (const dirent* entry = ::readdir(directory.get())) {
        const std::string_view name = entry->d_name;
        if (!name.starts_with("zram")) {
            continue;
        }
        const std::string path = std::string(name) + "/mm_stat";
        const UniqueFD file(::openat(::dirfd(directory.get()), path.c_str(), O_RDONLY | O_CLOEXEC));
        std::array<char, 256> buffer;
        if (file.valid()) {
            bytes += parseZramUsedBytes(readFromStart(file.get(), buffer)).value_or(0);
        }
    }
    return bytes;
}

}  // namespace

ProcfsMetricsReader::ProcfsMetricsReader()
    : ProcfsMetricsReader(std::make_unique<PosixHomeVolume>(userAccount().homeDirectory),
                          ProcfsMachine::current(), "/sys") {}

ProcfsMetricsReader::ProcfsMetricsReader(std::unique_ptr<HomeVolume> homeVolume,
                                         const ProcfsMachine& machine, const std::string& sysRoot)
    : homeVolume_(std::move(homeVolume)),
      pageSize_(machine.pageSize),
      blockDirectory_(sysRoot + "/block"),
      memoryInfo_(machine.procRoot + "/meminfo"),
      memoryPressure_(machine.procRoot + "/pressure/memory"),
      table_(machine) {}

std::vector<ProcessSample> ProcfsMetricsReader::readProcesses() {
    return table_.readProcesses();
}

MemorySnapshot ProcfsMetricsReader::readMemory() {
    std::array<char, 8192> buffer;
    const std::string_view text = memoryInfo_.read(buffer);
    return text.empty()
               ? MemorySnapshot{}
               : memorySnapshot(parseMemoryInfo(text, readZramBytes(blockDirectory_), pageSize_));
}

std::string ProcfsMetricsReader::readPressureText() {
    std::array<char, 1024> buffer;
    return replacingInvalidUTF8(pressureText(memoryPressure_.read(buffer)));
}

DiskSnapshot ProcfsMetricsReader::readDiskSnapshot() {
    return homeVolume_->readDiskSnapshot();
}

}  // namespace tallowcrest
