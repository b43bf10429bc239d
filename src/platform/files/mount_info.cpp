#include "platform/files/mount_info.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <charconv>
#include <cstddef>
#include <fstream>
#include <limits>
#include <system_error>

namespace tallowcrest {
namespace {

/// Takes a number and the character behind it off the front. Absent when it is not that.
std::optional<std::uint64_t> takeNumber(std::string_view& line, char end) {
    std::uint64_t number = 0;
    const auto [next, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    const auto length = static_cast<std::size_t>(next - line.data());
    if (error != std::errc() || length == line.size() || *next != end) {
        return std::nullopt;
    }
    line.remove_prefix(length + 1);
    return number;
}

/// Takes what stands before `end`, and `end`, off the front; everything when it is not there.
std::string_view takeUntil(std::string_view& text, std::string_view end) {
    const std::size_t at = text.find(end);
    const std::string_view taken = text.substr(0, at);
    text.remove_prefix(at == std::string_view::npos ? text.size() : at + end.size());
    return taken;
}

/// Blanks and backslashes are written by their number, "\040".
std::string withoutEscapes(std::string_view text) {
    constexpr std::size_t digits = 3;
    std::string result;
    while (!text.empty()) {
        const std::string_view number = text.substr(1, digits);
        const char* const end = number.data() + number.size();
        unsigned char character = 0;
        const auto [next, error] = std::from_chars(number.data(), end, character, 8);
        if (text.front() == '\\' && number.size() == digits && next == end &&
            error == std::errc()) {
            result += static_cast<char>(character);
            text.remove_prefix(1 + digits);
        } else {
            result += text.front();
            text.remove_prefix(1);
        }
    }
    return result;
}

}  // namespace

std::optional<std::uint64_t> deviceOfMount(std::string_view line, std::uint64_t mount) {
    constexpr std::uint64_t largest = std::numeric_limits<unsigned>::max();
    // The mount, the mount around it, and the device: "36 35 0:39 / /home …".
    if (takeNumber(line, ' ') != mount || !takeNumber(line, ' ')) {
        return std::nullopt;
    }
    const auto major = takeNumber(line, ':');
    const auto minor = takeNumber(line, ' ');
    const bool isDevice = major && minor && *major <= largest && *minor <= largest;
    return isDevice ? std::optional<std::uint64_t>(::gnu_dev_makedev(static_cast<unsigned>(*major),
                                                                     static_cast<unsigned>(*minor)))
                    : std::nullopt;
}

std::optional<std::string> sourceOfMount(std::string_view line, std::uint64_t mount) {
    if (takeNumber(line, ' ') != mount) {
        return std::nullopt;
    }
    // Behind a number of fields that varies: "… - btrfs /dev/sda2 rw".
    takeUntil(line, " - ");
    takeUntil(line, " ");
    const std::string_view source = takeUntil(line, " ");
    return source.empty() ? std::nullopt : std::optional(withoutEscapes(source));
}

std::optional<MountedPath> mountedPath(const std::string& path) {
    struct statx found {};
    if (::statx(AT_FDCWD, path.c_str(), AT_NO_AUTOMOUNT, STATX_TYPE | STATX_MNT_ID, &found) != 0) {
        return std::nullopt;
    }
    MountedPath result{found.stx_dev_major, found.stx_dev_minor};
    if ((found.stx_mask & STATX_MNT_ID) != 0) {
        std::ifstream mounts("/proc/self/mountinfo");
        for (std::string line; !result.mountDevice && std::getline(mounts, line);) {
            result.mountDevice = deviceOfMount(line, found.stx_mnt_id);
            result.mountSource = sourceOfMount(line, found.stx_mnt_id);
        }
    }
    return result;
}

}  // namespace tallowcrest
