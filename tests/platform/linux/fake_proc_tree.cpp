#include "tests/platform/linux/fake_proc_tree.h"

#include <fstream>
#include <optional>

#include <fmt/format.h>

namespace tallowcrest {

std::string FakeProcess::statText(std::int64_t pid) const {
    return fmt::format(
        "{} ({}) {} 1 {} {} 0 -1 {} 82213 911 12 3 {} {} 77 13 20 0 31 0 {} 3221225472 {} "
        "18446744073709551615 {} 94208000900000 {} 0 0 0 0 4096 1260 0 0 0 17 1 0 0 0 0 0\n",
        pid, name, state, pid, pid, flags, userTicks, systemTicks, startTicks, residentPages,
        startCode, startStack);
}

ProcfsMachine FakeProcTree::machine() const {
    ProcfsMachine machine;
    machine.procRoot = root();
    machine.pageSize = 4096.0;
    machine.ticksPerSecond = 100.0;
    machine.physicalBytes = 1024.0 * 1024.0 * 1024.0;
    return machine;
}

ProcfsClocks FakeProcTree::clocks() {
    return {[this] { return monotonic; }, [this] { return sinceBoot; }, {}};
}

ProcfsClocks FakeProcTree::clocksWithProcessTimes() {
    ProcfsClocks result = clocks();
    result.processTime = [this](std::int32_t pid) {
        ++clockReadings[pid];
        const auto found = processTimes.find(pid);
        return found == processTimes.end() ? std::nullopt : std::optional(found->second);
    };
    return result;
}

void FakeProcTree::put(std::int64_t pid, const FakeProcess& process) {
    putStatText(pid, process.statText(pid));
}

void FakeProcTree::putStatText(std::int64_t pid, const std::string& text) {
    putFile(std::to_string(pid) + "/stat", text);
}

void FakeProcTree::putExecutable(std::int64_t pid, const std::string& target) {
    const auto link = root() / std::to_string(pid) / "exe";
    std::filesystem::create_directories(link.parent_path());
    std::filesystem::remove(link);
    std::filesystem::create_symlink(target, link);
}

void FakeProcTree::putCommandLine(std::int64_t pid, const std::string& arguments) {
    putFile(std::to_string(pid) + "/cmdline", arguments);
}

void FakeProcTree::putFile(const std::string& path, const std::string& text) {
    const auto file = root() / path;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
}

void FakeProcTree::remove(std::int64_t pid) {
    std::filesystem::remove_all(root() / std::to_string(pid));
}

void FakeProcTree::putNewest(std::int64_t pid) {
    putFile("loadavg", fmt::format("0.52 0.58 0.59 2/1284 {}\n", pid));
}

}  // namespace tallowcrest
