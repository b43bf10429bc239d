#include "disk/storage_suggestions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <string_view>

#include <fmt/format.h>

#include "core/number_text.h"
#include "core/text.h"
#include "disk/file_names.h"
#include "disk/storage_areas.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;

constexpr double secondsPerDay = 86400.0;
/// An installer or archive is old when it has not changed for more whole days than this.
constexpr double oldInstallerDays = 13.0;
/// The first day of the year 1.
constexpr double distantPast = -62135596800.0;

constexpr auto installerExtensions =
    std::to_array<std::string_view>({"dmg", "pkg", "zip", "iso", "xip"});

/// Without its dot; empty when there is none.
std::string extensionOf(const fs::path& name) {
    const std::string extension = name.extension().string();
    return extension.empty() ? extension : extension.substr(1);
}

}  // namespace

StorageOptimizationSuggestion makeSuggestion(const FoundFile& file, Date now,
                                             const std::string& home) {
    const fs::path path(file.path);
    const double days =
        std::trunc((now.unixSeconds() - file.modifiedAt.value_or(distantPast)) / secondsPerDay);
    const bool isOldInstaller =
        std::ranges::find(installerExtensions, loweredASCII(extensionOf(path))) !=
            installerExtensions.end() &&
        days > oldInstallerDays;
    return {.id = UUID::random(),
            .title = shownPath(path.filename().string()),
            .detail = shownPathInHome(path.parent_path().string(), home),
            .path = file.path,
            .bytes = file.bytes,
            .recommendation = isOldInstaller ? "Review for removal" : "Back up or archive",
            .reason = isOldInstaller
                          ? fmt::format("This looks like an installer or archive and has not "
                                        "changed for {} days.",
                                        cutToInteger(days))
                          : "This is a large personal file. Back it up before considering removal "
                            "from this Mac.",
            .identity = file.identity};
}

std::string shownPath(const std::string& path) {
    return replacingControlCharacters(path, "\uFFFD");
}

std::string shownPathInHome(std::string path, const std::string& home) {
    // "/" would replace every slash.
    if (home.size() > 1) {
        for (std::size_t at = path.find(home); at != std::string::npos; at = path.find(home, at)) {
            path.replace(at, home.size(), "~");
        }
    }
    return shownPath(path);
}

std::string shownFolder(const std::string& folder, const std::string& home) {
    return shownPath(isInsideFolder(folder, home) ? "~" + folder.substr(home.size()) : folder);
}

std::string backupName(const std::string& name, Date now) {
    const fs::path path(name);
    const std::string ending =
        fmt::format("-{}.{}", cutToInteger(now.unixSeconds()), extensionOf(path));
    constexpr std::size_t longest = 255;  // of a name, in bytes
    const std::string stem = path.stem().string();
    return std::string(cutName(stem, longest - std::min(ending.size(), longest))) + ending;
}

}  // namespace tallowcrest
