#include <cstdint>
#include <string>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "app/console.h"
#include "app/headless_format.h"
#include "disk/storage_suggestions.h"

namespace tallowcrest {
namespace {

using json = nlohmann::ordered_json;

std::string sizeColumn(std::int64_t bytes) {
    constexpr double gigabyte = 1073741824.0;
    return fmt::format("{:>10.2f} GB", static_cast<double>(bytes) / gigabyte);
}

std::string lineOf(const json& object) {
    return object.dump(-1, ' ', true, json::error_handler_t::replace) + '\n';
}

}  // namespace

std::string storageRow(const DiskStorageOffender& area) {
    constexpr std::size_t nameColumns = 32;
    PrintableText name = printableText(area.name, nameColumns);
    name.text.append(nameColumns - name.characters, ' ');
    return fmt::format("{}  {}  {}\n", sizeColumn(area.bytes), name.text,
                       printableText(shownPath(area.path)).text);
}

std::string storageJSON(const DiskStorageOffender& area) {
    return lineOf({{"name", area.name}, {"path", area.path}, {"bytes", area.bytes}});
}

std::string largeFileRow(const StorageOptimizationSuggestion& file) {
    return fmt::format("{}  {}\n               {}: {}\n", sizeColumn(file.bytes),
                       printableText(shownPath(file.path)).text, file.recommendation, file.reason);
}

std::string largeFileJSON(const StorageOptimizationSuggestion& file) {
    return lineOf({{"title", file.title},
                   {"detail", file.detail},
                   {"path", file.path},
                   {"bytes", file.bytes},
                   {"recommendation", file.recommendation},
                   {"reason", file.reason}});
}

}  // namespace tallowcrest
