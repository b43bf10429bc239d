#include "platform/files/mount_info.h"

#include <sys/sysmacros.h>

#include <charconv>
#include <cstddef>
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

}  // namespace tallowcrest
