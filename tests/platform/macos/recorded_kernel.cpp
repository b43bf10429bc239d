// What the kernel and CoreFoundation of a Mac answer, recorded. With it the sources of macOS that
// ask them run on other systems: this file defines what frameworks.cpp, mach_tick_source.cpp,
// process_start_time_macos.cpp and this_process_macos.cpp define on a Mac.

#include "tests/platform/macos/recorded_kernel.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/base/environment.h"
#include "platform/host.h"
#include "platform/macos/frameworks.h"
#include "platform/macos/mach_tick_source.h"
#include "platform/macos/process_start_time_macos.h"

namespace tallowcrest {
namespace {

constexpr double totalBytes = 536'870'912'000;  // 500 GB
constexpr double freeBytes = 132'607'115'264;   // 123.5 GB
constexpr CFObject totalKey = "total";
constexpr CFObject freeKey = "free";
constexpr unsigned long numberType = 7;

CFObject folderUrl(CFObject, const unsigned char* path, CoreFoundation::Index bytes,
                   CoreFoundation::Boolean isFolder) {
    const std::string_view given(reinterpret_cast<const char*>(path),
                                 static_cast<std::size_t>(bytes));
    return isFolder == 1 && given == userAccount().homeDirectory ? "home" : nullptr;
}

CoreFoundation::Boolean property(CFObject, CFObject key, void* value, CFObject*) {
    const double* const bytes =
        key == totalKey ? &totalBytes : (key == freeKey ? &freeBytes : nullptr);
    *static_cast<CFObject*>(value) = bytes;
    return bytes != nullptr;
}

CoreFoundation::Boolean numberValue(CFObject number, CoreFoundation::Index type, void* value) {
    if (type != CoreFoundation::doubleNumber) {
        return 0;
    }
    *static_cast<double*>(value) = *static_cast<const double*>(number);
    return 1;
}

}  // namespace

const CoreFoundation* coreFoundation() {
    static const CoreFoundation framework{
        .CFURLCreateFromFileSystemRepresentation = folderUrl,
        .CFURLCopyResourcePropertyForKey = property,
        .CFGetTypeID = [](CFObject) { return numberType; },
        .CFNumberGetTypeID = [] { return numberType; },
        .CFNumberGetValue = numberValue,
        .CFRelease = [](CFObject) {},
        .kCFURLVolumeTotalCapacityKey = &totalKey,
        .kCFURLVolumeAvailableCapacityForImportantUsageKey = &freeKey};
    return &framework;
}

/// A second for each reading. After the tenth the counter of the user's ticks has wrapped around.
std::optional<CPUTickReading> MachTickSource::readTicks() {
    static std::atomic<std::uint32_t> readings{0};
    const std::uint32_t index = readings++;
    constexpr std::uint32_t almostFull = 4'294'967'000;
    return CPUTickReading{{.user = static_cast<std::uint32_t>(almostFull + 30 * index),
                           .system = 20ULL * index,
                           .idle = 150ULL * index,
                           .nice = 0},
                          std::chrono::seconds(index)};
}

std::uint64_t processStartTime(std::int64_t pid) {
    return pid == 402 ? 1'700'000'000'000'000 : 0;
}

std::unordered_map<std::int64_t, std::uint64_t> processStartTimes() {
    return {{402, processStartTime(402)}};
}

std::filesystem::path host::executablePath() {
    return recordedExecutable;
}

void host::lowerThreadPriority() {}

std::chrono::duration<double, std::milli> host::timeSinceProcessStart() {
    return {};
}

}  // namespace tallowcrest
