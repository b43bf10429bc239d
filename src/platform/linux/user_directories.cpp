#include "platform/linux/user_directories.h"

#include <cstddef>
#include <utility>

#include "core/text.h"
#include "platform/base/environment.h"
#include "platform/base/regular_file.h"

namespace tallowcrest {
namespace {

/// The text between double quotes, with backslash escapes resolved. Absent when it is malformed.
std::optional<std::string> unquoted(std::string_view value) {
    if (value.size() < 2 || value.front() != '"') {
        return std::nullopt;
    }
    std::string result;
    for (std::size_t i = 1; i < value.size(); ++i) {
        if (value[i] == '"') {
            const std::string_view rest = trimmingWhiteSpace(value.substr(i + 1));
            return rest.empty() || rest.front() == '#' ? std::optional(result) : std::nullopt;
        }
        if (value[i] == '\\' && ++i == value.size()) {
            return std::nullopt;
        }
        result += value[i];
    }
    return std::nullopt;
}

std::optional<std::string> absolutePath(const std::string& value, std::string_view home) {
    constexpr std::string_view homeVariable = "$HOME";
    if (value.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    if (value.starts_with('/')) {
        return value;
    }
    if (value == homeVariable || value.starts_with("$HOME/")) {
        return std::string(home) + value.substr(homeVariable.size());
    }
    return std::nullopt;
}

/// Without a slash at the end, and without "." and "..". A text that is no path stays.
std::string normal(const std::string& path) {
    std::string result = std::filesystem::path(path).lexically_normal();
    while (result.size() > 1 && result.ends_with('/')) {
        result.pop_back();
    }
    return result;
}

}  // namespace

std::optional<std::string> userDirectory(std::string_view text, std::string_view name,
                                         std::string_view home) {
    const std::string key = "XDG_" + std::string(name) + "_DIR=";
    std::optional<std::string> found;
    while (!text.empty()) {
        const auto end = text.find('\n');
        const std::string_view line = trimmingWhiteSpace(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (!line.starts_with(key)) {
            continue;
        }
        const auto value = unquoted(line.substr(key.size()));
        // The last valid entry counts, as in a shell.
        if (auto path = value ? absolutePath(*value, home) : std::nullopt) {
            found = std::move(path);
        }
    }
    return found;
}

UserFolders userFolders() {
    const std::string home = normal(userAccount().homeDirectory);
    if (!home.starts_with('/')) {
        return {};
    }
    UserFolders folders;
    folders.home = home;
    folders.configuration = normal(baseFolder("XDG_CONFIG_HOME", ".config"));
    folders.data = normal(baseFolder("XDG_DATA_HOME", ".local/share"));
    folders.caches = normal(baseFolder("XDG_CACHE_HOME", ".cache"));
    const std::string text = readRegularFile(folders.configuration + "/user-dirs.dirs");
    const auto named = [&](std::string_view name, std::string_view usual) {
        return normal(userDirectory(text, name, home).value_or(home + '/' + std::string(usual)));
    };
    folders.downloads = named("DOWNLOAD", "Downloads");
    folders.documents = named("DOCUMENTS", "Documents");
    folders.desktop = named("DESKTOP", "Desktop");
    folders.videos = named("VIDEOS", "Videos");
    folders.pictures = named("PICTURES", "Pictures");
    folders.music = named("MUSIC", "Music");
    return folders;
}

std::filesystem::path documentsDirectory() {
    return userFolders().documents;
}

}  // namespace tallowcrest
