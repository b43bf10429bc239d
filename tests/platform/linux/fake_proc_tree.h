#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

#include "platform/linux/procfs_process_table.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

/// One process of a fake tree. What is not told is that of a plain sleeping process.
struct FakeProcess {
    std::string name = "worker";
    char state = 'S';
    std::uint64_t flags = 4194560;
    std::uint64_t userTicks = 0;
    std::uint64_t systemTicks = 0;
    std::uint64_t startTicks = 1000;
    std::uint64_t residentPages = 256;
    std::uint64_t startCode = 94208000000000;
    std::uint64_t startStack = 140720000000000;

    std::string statText(std::int64_t pid) const;
};

/// A directory in the form of a process file system, removed at the end, with clocks that move only
/// by hand. The machine has 4096-byte pages, 100 ticks a second and 1 GB.
class FakeProcTree {
public:
    const std::filesystem::path& root() const { return folder_.path(); }
    ProcfsMachine machine() const;
    /// Without clocks of the processes.
    ProcfsClocks clocks();
    /// With those of the processes in `processTimes`.
    ProcfsClocks clocksOfProcesses();

    /// Writes the process's `stat` file in place, as a kernel would: who has it open sees the news.
    void put(std::int64_t pid, const FakeProcess& process);
    void putStatText(std::int64_t pid, const std::string& text);
    void putExecutable(std::int64_t pid, const std::string& target);
    void putCommandLine(std::int64_t pid, const std::string& arguments);
    void putFile(const std::string& path, const std::string& text);
    void remove(std::int64_t pid);
    /// The number that was given out last.
    void putNewest(std::int64_t pid);

    void advance(std::chrono::nanoseconds duration) {
        monotonic += duration;
        sinceBoot += duration;
    }

    std::chrono::nanoseconds monotonic = std::chrono::seconds(500);
    std::chrono::nanoseconds sinceBoot = std::chrono::seconds(1000);
    std::map<std::int64_t, std::chrono::nanoseconds> processTimes;
    /// How often each process's clock was asked for.
    std::map<std::int64_t, int> clockReadings;

private:
    TemporaryFolder folder_;
};

}  // namespace tallowcrest
