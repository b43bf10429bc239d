#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/local_records.h"
#include "disk/disk_records.h"
#include "disk/volume.h"

/// The figures and the texts of the scan of storage areas. Pure; any thread.
namespace tallowcrest {

/// The bytes that `du -sk` has printed for a folder. Absent when it printed no total, which it does
/// only at its end, or none that a disk can hold.
std::optional<std::int64_t> parseDiskUsage(std::string_view output);

/// A measured area.
struct MeasuredArea {
    DiskStorageOffender row;
    std::string place;                  ///< the path of the row without links
    std::optional<Volume> volume = {};  ///< absent when it is not known
};

/// What the remainder is computed from.
struct UsedSpace {
    DiskSnapshot disk;
    std::optional<Volume> volume = {};  ///< that `disk` tells of
    std::string unreadableData;         ///< as in `DiskPlaces`
};

/// The rows, largest first and equal ones by their paths. An area that contains others is left with
/// what is in none of them, and of areas that are links to one folder only the first is a row. What
/// the used space has beyond all rows on its file system follows as a row of its own if it is above
/// 1 GiB. No such row without `used`.
std::vector<DiskStorageOffender> rankedOffenders(std::vector<MeasuredArea> areas,
                                                 const std::optional<UsedSpace>& used);

/// The name of the row of the remainder.
std::string remainderName(std::string_view unreadableData);

namespace storage_texts {

std::string complete(const std::vector<DiskStorageOffender>& rows);
std::string completeEvent(std::size_t rows, std::string_view unreadableData);
/// For a scan that the owner has stopped after `done` of `all` areas.
std::string stopped(std::size_t done, std::size_t all);
std::string stoppedEvent(std::size_t rows, std::size_t done, std::size_t all);

}  // namespace storage_texts
}  // namespace tallowcrest
