// Searches one folder for its largest files, for bench/walk. Prints the peak of the resident memory
// above that at the start, in KiB, then the files.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stop_token>
#include <string>

#include "platform/files/largest_files_search_posix.h"

namespace {

/// A line of /proc/self/status, in KiB.
std::int64_t memory(const std::string& field) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(field + ':')) {
            return std::strtoll(line.c_str() + field.size() + 1, nullptr, 10);
        }
    }
    return 0;
}

}  // namespace

int main(int count, char** arguments) {
    constexpr std::int64_t minimumBytes = 100 << 20;
    constexpr std::size_t mostFiles = 30;
    if (count != 2) {
        std::fprintf(stderr, "walk_search: FOLDER\n");
        return 2;
    }
    const std::int64_t before = memory("VmRSS");
    std::int64_t seen = 0;
    tallowcrest::PosixLargestFilesSearch search([] {});
    const auto files = search.find({{arguments[1]}, minimumBytes, mostFiles},
                                   [&](const auto& progress) { seen = progress.filesSeen; }, {});
    std::printf("%lld KiB above the start, %lld files seen\n",
                static_cast<long long>(memory("VmHWM") - before), static_cast<long long>(seen));
    for (const auto& file : files) {
        std::printf("%lld %s\n", static_cast<long long>(file.bytes), file.path.c_str());
    }
    return 0;
}
