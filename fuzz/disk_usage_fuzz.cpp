#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/text.h"
#include "disk/storage_ranking.h"

#include "fuzz/require.h"

namespace tallowcrest {
namespace {

/// Reads each line as the output for one area, whose path is what follows the first tab.
std::vector<MeasuredArea> areasIn(std::string_view input) {
    std::vector<MeasuredArea> areas;
    while (const auto line = takeLine(input)) {
        const std::optional<std::int64_t> bytes = parseDiskUsage(*line);
        require(!bytes || (*bytes >= 0 && *bytes % 1024 == 0));
        if (bytes) {
            const std::size_t tab = line->find('\t');
            const std::string path(tab == std::string_view::npos ? "" : line->substr(tab + 1));
            areas.push_back({{"area", path, *bytes}, path.size() % 3});
        }
    }
    // The time for all pairs of areas grows with the cube of their number; a machine has tens.
    areas.resize(areas.size() < 40 ? areas.size() : 40);
    return areas;
}

void checkRows(const std::vector<MeasuredArea>& areas, const std::optional<UsedSpace>& used) {
    const std::vector<DiskStorageOffender> rows = rankedOffenders(areas, used);
    require(rows.size() == areas.size() || (used && rows.size() == areas.size() + 1));
    std::int64_t last = std::numeric_limits<std::int64_t>::max();
    for (const DiskStorageOffender& row : rows) {
        require(row.bytes >= 0 && row.bytes <= last);
        last = row.bytes;
    }
}

}  // namespace
}  // namespace tallowcrest

/// The input is what a tool has printed for several folders, one line each.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tallowcrest;
    const std::string input(data, data + size);
    const std::vector<MeasuredArea> areas = areasIn(input);
    checkRows(areas, std::nullopt);
    const double totalGB = static_cast<double>(size) * 1000.0;
    checkRows(areas, UsedSpace{{totalGB, 10.0}, std::nullopt, "data"});
    checkRows(areas, UsedSpace{{totalGB, 10.0}, 1, "data"});
    return 0;
}
