#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tallowcrest {

/// The device of the file system that is mounted as `mount`, by a line of `mountinfo`. All mounts
/// of one file system have the same, also those of subvolumes. Absent when the line is about
/// another mount or does not tell. Pure; any thread.
std::optional<std::uint64_t> deviceOfMount(std::string_view line, std::uint64_t mount);

/// What is mounted as `mount`, by a line of `mountinfo`: "/dev/sda2" for a file system on a disk,
/// one of several disks where it has several, else a word of its kind. Absent as above.
std::optional<std::string> sourceOfMount(std::string_view line, std::uint64_t mount);

/// What a path is stored on.
struct MountedPath {
    unsigned deviceMajor = 0;  ///< the device of a subvolume is not that of its file system
    unsigned deviceMinor = 0;
    // As above, of the mount that the path is in.
    std::optional<std::uint64_t> mountDevice = {};
    std::optional<std::string> mountSource = {};
};

/// Links are followed. Absent when the path cannot be read. Blocks as long as the file system
/// hangs. Any thread.
std::optional<MountedPath> mountedPath(const std::string& path);

}  // namespace tallowcrest
