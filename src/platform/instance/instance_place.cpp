#include "platform/instance/instance_place.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/base/environment.h"
#include "platform/instance/this_machine.h"

namespace tallowcrest {
namespace {

constexpr const char* programFolder = "/tallowcrest";

bool isAbsolute(const std::string& path) {
    return !path.empty() && path.front() == '/';
}

/// Whether this user owns the directory, as the environment may be another user's session's, and it
/// grants no more than `allowed`.
bool isOwnDirectory(const std::string& path, mode_t allowed = 07777) {
    struct stat status {};
    return isAbsolute(path) && ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == ::geteuid() && (status.st_mode & 07777 & ~allowed) == 0;
}

/// Empty when there is none.
std::string runtimeDirectory(const InstanceEnvironment& environment) {
    if (isOwnDirectory(environment.runtimeDirectory)) {
        return environment.runtimeDirectory;
    }
    return isOwnDirectory(environment.usualRuntimeDirectory, S_IRWXU)
               ? environment.usualRuntimeDirectory
               : "";
}

/// Resolves links and dots, so that different paths to one directory give the same name.
std::string canonical(const std::string& path) {
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::weakly_canonical(path, error);
    return error || path.empty() ? path : resolved.string();
}

/// The 64-bit FNV-1a hash in 16 hexadecimal digits; the same in every build.
std::string digest(std::string_view text) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char c : text) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 0x100000001B3U;
    }
    std::string digits(16, '0');
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, hash >>= 4U) {
        *digit = "0123456789abcdef"[hash & 0xFU];
    }
    return digits;
}

}  // namespace

InstanceEnvironment instanceEnvironment(std::string dataDirectory) {
    return {environmentVariable("XDG_RUNTIME_DIR"), std::move(dataDirectory), thisMachine(),
            "/run/user/" + std::to_string(::geteuid())};
}

InstancePlace instancePlace(const InstanceEnvironment& environment) {
    const std::string data = canonical(environment.dataDirectory);
    if (const std::string runtime = runtimeDirectory(environment); !runtime.empty()) {
        return {runtime + programFolder, "window-" + digest(data)};
    }
    return {environment.dataDirectory, "window-" + digest(data + '\n' + environment.machine)};
}

}  // namespace tallowcrest
