#pragma once

#include <filesystem>

namespace tallowcrest {

/// Whether the block device is one whose heads must move, or a part of such a disk, by the files
/// below `sysfs`. False when they do not tell. Any thread.
bool isRotationalDisk(const std::filesystem::path& sysfs, unsigned major, unsigned minor);

}  // namespace tallowcrest
