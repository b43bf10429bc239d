#include "disk/storage_ranking.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include <fmt/format.h>

#include "core/number_text.h"
#include "disk/storage_areas.h"
#include "sampling/binary_units.h"

namespace tallowcrest {
namespace {

/// A remainder up to this size is not worth a row.
constexpr std::int64_t smallestRemainder = 1073741824;
/// No disk is larger: 2^60 bytes.
constexpr std::int64_t largestSize = std::int64_t{1} << 60;

std::optional<std::uint64_t> deviceOf(const MeasuredArea& area) {
    return area.volume ? std::optional(area.volume->device) : std::nullopt;
}

/// False when one of them is not known to be on the same device.
bool mayContain(const MeasuredArea& outer, const MeasuredArea& inner) {
    return deviceOf(outer) == deviceOf(inner) && isInsideFolder(inner.place, outer.place);
}

void keepEachPlaceOnce(std::vector<MeasuredArea>& areas) {
    std::ranges::sort(areas, {},
                      [](const MeasuredArea& area) { return std::tie(area.place, area.row.path); });
    const auto repeated = std::ranges::unique(areas, {}, &MeasuredArea::place);
    areas.erase(repeated.begin(), repeated.end());
}

/// `du` counts an area inside another one in both.
std::vector<std::int64_t> ownBytes(const std::vector<MeasuredArea>& areas) {
    std::vector<std::int64_t> result;
    for (const MeasuredArea& area : areas) {
        std::int64_t own = area.row.bytes;
        for (const MeasuredArea& inner : areas) {
            const bool isDirect =
                mayContain(area, inner) &&
                std::ranges::none_of(areas, [&](const MeasuredArea& between) {
                    return mayContain(area, between) && mayContain(between, inner);
                });
            if (isDirect) {
                own -= std::min(own, inner.row.bytes);
            }
        }
        result.push_back(own);
    }
    return result;
}

std::int64_t usedBytes(const DiskSnapshot& disk) {
    const double bytes = (disk.totalGB - disk.freeGB) * bytesPerGigabyte;
    return !(bytes > 0.0)                             ? 0
           : bytes < static_cast<double>(largestSize) ? static_cast<std::int64_t>(bytes)
                                                      : largestSize;
}

std::int64_t remainderBytes(const std::vector<MeasuredArea>& areas, const UsedSpace& used) {
    std::int64_t left = usedBytes(used.disk);
    for (const MeasuredArea& area : areas) {
        if (!area.volume || !used.volume || area.volume->fileSystem == used.volume->fileSystem) {
            left -= std::min(left, area.row.bytes);
        }
    }
    return left;
}

/// What the row of the remainder stands for, in one sentence.
std::string remainderExplanation(std::string_view unreadableData) {
    return fmt::format(
        "Used space that is in none of the measured areas: folders outside them, areas that took "
        "longer than a minute to measure, other accounts, snapshots, what the system reserves, and "
        "other {} that this account may not read.",
        unreadableData);
}

}  // namespace

std::optional<std::int64_t> parseDiskUsage(std::string_view output) {
    constexpr std::string_view separators = " \t";
    const std::size_t begin = output.find_first_not_of(separators);
    if (begin == std::string_view::npos) {
        return std::nullopt;
    }
    output.remove_prefix(begin);
    const auto kilobytes = parseDecimalInteger(output.substr(0, output.find_first_of(separators)));
    if (!kilobytes || *kilobytes < 0 || *kilobytes > largestSize / 1024) {
        return std::nullopt;
    }
    return *kilobytes * 1024;
}

std::vector<DiskStorageOffender> rankedOffenders(std::vector<MeasuredArea> areas,
                                                 const std::optional<UsedSpace>& used) {
    keepEachPlaceOnce(areas);
    const std::vector<std::int64_t> own = ownBytes(areas);
    std::vector<DiskStorageOffender> rows;
    for (std::size_t i = 0; i < areas.size(); ++i) {
        areas[i].row.bytes = own[i];
        rows.push_back(areas[i].row);
    }
    if (used) {
        const std::int64_t remainder = remainderBytes(areas, *used);
        if (remainder > smallestRemainder) {
            rows.push_back({remainderName(used->unreadableData), "/", remainder,
                            remainderExplanation(used->unreadableData)});
        }
    }
    std::ranges::sort(rows, [](const DiskStorageOffender& left, const DiskStorageOffender& right) {
        return left.bytes != right.bytes ? left.bytes > right.bytes : left.path < right.path;
    });
    return rows;
}

std::string remainderName(std::string_view unreadableData) {
    return fmt::format("Other / inaccessible {}", unreadableData);
}

namespace storage_texts {

std::string complete(const std::vector<DiskStorageOffender>& rows) {
    return rows.empty()
               ? "Storage scan found no readable folders. Check Full Disk Access."
               : fmt::format("Storage scan complete. Largest: {} at {:.1f} GB.", rows.front().name,
                             static_cast<double>(rows.front().bytes) * gigabytesPerByte);
}

std::string completeEvent(std::size_t rows, std::string_view unreadableData) {
    return fmt::format(
        "Ranked {} volume and user storage areas. Unreadable {} is shown as a "
        "remainder; no files were changed.",
        rows, unreadableData);
}

std::string stopped(std::size_t done, std::size_t all) {
    return fmt::format("Storage scan stopped after {} of {} area{}.", done, all, pluralEnding(all));
}

std::string stoppedEvent(std::size_t rows, std::size_t done, std::size_t all) {
    return fmt::format(
        "Ranked {} storage area{}. The scan was stopped after {} of {} area{}, so "
        "there is no remainder; no files were changed.",
        rows, pluralEnding(rows), done, all, pluralEnding(all));
}

}  // namespace storage_texts
}  // namespace tallowcrest
