#include <cstdint>
#include <string>

#include <fmt/format.h>

#include "app/console.h"
#include "app/headless_format.h"
#include "app/json_line.h"
#include "disk/storage_suggestions.h"
#include "sampling/binary_units.h"

namespace tallowcrest {
namespace {

std::string sizeColumn(std::int64_t bytes) {
    return fmt::format("{:>10.2f} GB", static_cast<double>(bytes) * gigabytesPerByte);
}

/// A line that says more of the row above it.
std::string lineBelow(const std::string& text) {
    return fmt::format("               {}\n", printableText(text).text);
}

}  // namespace

std::string storageRow(const DiskStorageOffender& area) {
    constexpr std::size_t nameColumns = 32;
    std::string row =
        fmt::format("{}  {}  {}\n", sizeColumn(area.bytes), printableColumn(area.name, nameColumns),
                    printableText(shownPath(area.path)).text);
    if (!area.explanation.empty()) {
        row += lineBelow(area.explanation);
    }
    return row;
}

std::string storageJSON(const DiskStorageOffender& area) {
    return jsonLine({{"name", area.name},
                     {"path", area.path},
                     {"bytes", area.bytes},
                     {"explanation", area.explanation}});
}

std::string largeFileRow(const StorageOptimizationSuggestion& file) {
    return fmt::format("{}  {}\n", sizeColumn(file.bytes),
                       printableText(shownPath(file.path)).text) +
           lineBelow(file.recommendation + ": " + file.reason);
}

std::string largeFileJSON(const StorageOptimizationSuggestion& file) {
    return jsonLine({{"title", file.title},
                     {"detail", file.detail},
                     {"path", file.path},
                     {"bytes", file.bytes},
                     {"recommendation", file.recommendation},
                     {"reason", file.reason}});
}

}  // namespace tallowcrest
