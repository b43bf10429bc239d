#include "platform/linux/user_directories.h"

#include <cstddef>
#include <cstdlib>
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

std::filesystem::path documentsDirectory() {
    const std::filesystem::path home = userAccount().homeDirectory;
    if (!home.is_absolute()) {
        return {};
    }
    const char* config = std::getenv("XDG_CONFIG_HOME");
    const std::filesystem::path folder =
        config != nullptr && *config == '/' ? std::filesystem::path(config) : home / ".config";
    return userDirectory(readRegularFile(folder / "user-dirs.dirs"), "DOCUMENTS", home.string())
        .value_or((home / "Documents").string());
}

}  // namespace tallowcrest
