#include "tests/architecture/layer_rules.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>

namespace tallowcrest::architecture {
namespace {

/// From the bottom up; each layer may include those before it.
constexpr std::array<std::string_view, 11> layers{
    "core", "sampling",    "actions", "remote",       "reports", "advisor",
    "disk", "integration", "monitor", "presentation", "app"};

/// The highest layer that declares ports for platform/ to implement.
constexpr std::string_view highestPortLayer = "integration";

constexpr std::array<std::string_view, 14> platformLayers{
    "platform",          "platform/base",   "platform/tools",   "platform/instance",
    "platform/settings", "platform/locale", "platform/linux",   "platform/macos",
    "platform/x11",      "platform/http",   "platform/secrets", "platform/trash",
    "platform/files",    "platform/desktop"};

/// The widgets, which take plain values. A separate library, so that they cannot use the monitor.
constexpr std::string_view widgetLayer = "presentation/widgets";

/// The texts. A separate library, so that they are pure functions over values, tested without a
/// window.
constexpr std::string_view wordsLayer = "presentation/words";

/// The folders of the window, from the bottom up; each may include those before it.
constexpr std::array<std::string_view, 3> windowFolders{
    "presentation/state/", "presentation/screens/", "presentation/shell/"};

constexpr std::array<std::string_view, 5> qtLayers{"presentation", widgetLayer, wordsLayer,
                                                   "platform/desktop", "app"};

constexpr std::array<std::string_view, 16> systemMacros{
    "__linux__",   "__linux", "linux",       "__gnu_linux__", "__APPLE__", "__MACH__",
    "_WIN32",      "_WIN64",  "__CYGWIN__",  "__unix__",      "__unix",    "unix",
    "__FreeBSD__", "__BSD__", "__OpenBSD__", "__ANDROID__"};

template <std::size_t size>
bool contains(const std::array<std::string_view, size>& values, std::string_view value) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

std::optional<std::size_t> rankOf(std::string_view layer) {
    const auto found = std::find(layers.begin(), layers.end(), layer);
    if (found == layers.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - layers.begin());
}

/// "load" for a file in presentation/screens/load/. Absent for a file elsewhere.
std::optional<std::string_view> screenOf(std::string_view path) {
    constexpr std::string_view folder = "presentation/screens/";
    if (!path.starts_with(folder)) {
        return std::nullopt;
    }
    path.remove_prefix(folder.size());
    return path.substr(0, path.find('/'));
}

/// Absent for a file in none of the window's folders.
std::optional<std::size_t> windowRankOf(std::string_view path) {
    const auto found =
        std::find_if(windowFolders.begin(), windowFolders.end(),
                     [&](std::string_view folder) { return path.starts_with(folder); });
    if (found == windowFolders.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - windowFolders.begin());
}

bool platformMayInclude(std::string_view from, std::string_view to) {
    if (const auto rank = rankOf(to)) {
        return *rank <= *rankOf(highestPortLayer);
    }
    // The desktop services also ask X11 windows, listen for other starts of the program, compare
    // texts and keep secrets.
    if (from == "platform/desktop" && (to == "platform/x11" || to == "platform/instance" ||
                                       to == "platform/locale" || to == "platform/secrets")) {
        return true;
    }
    if (from == "platform" || to == "platform") {
        return from != "platform";
    }
    return to == "platform/base" || (to == "platform/tools" && from != "platform/base");
}

bool isQtHeader(const Include& include) {
    const std::string& target = include.target;
    if (target.size() < 2 || include.quoted) {
        return false;
    }
    const bool moduleOrClass =
        target[0] == 'Q' && std::isalpha(static_cast<unsigned char>(target[1])) != 0;
    const bool lowerCaseHeader = target[0] == 'q' && target.ends_with(".h");
    return moduleOrClass || lowerCaseHeader || target.starts_with("private/q");
}

bool namesAnOperatingSystem(const std::string& identifier) {
    return contains(systemMacros, identifier) || identifier.starts_with("Q_OS_") ||
           identifier.starts_with("TARGET_OS_");
}

}  // namespace

std::string layerOf(std::string_view path) {
    const std::size_t first = path.find('/');
    if (first == std::string_view::npos) {
        return {};
    }
    const std::string_view folder = path.substr(0, first);
    if (folder == "platform") {
        const std::size_t second = path.find('/', first + 1);
        if (second != std::string_view::npos) {
            return std::string(path.substr(0, second));
        }
    }
    if (path.starts_with(std::string(widgetLayer) + '/')) {
        return std::string(widgetLayer);
    }
    const bool isLines = path.starts_with("presentation/screens/") &&
                         path.substr(0, path.rfind('.')).ends_with("_lines");
    return isLines || path.starts_with(std::string(wordsLayer) + '/') ? std::string(wordsLayer)
                                                                      : std::string(folder);
}

bool mayUseQt(std::string_view layer) {
    return contains(qtLayers, layer);
}

bool mayInclude(std::string_view from, std::string_view to) {
    if (from == widgetLayer || to == widgetLayer) {
        return from == to || (to == widgetLayer && (from == "presentation" || from == "app"));
    }
    if (to == wordsLayer) {
        return from == to || from == "presentation" || from == "app";
    }
    if (from == wordsLayer) {
        return rankOf(to) && *rankOf(to) < *rankOf("presentation");
    }
    const bool fromPlatform = contains(platformLayers, from);
    if ((!fromPlatform && !rankOf(from)) || (!contains(platformLayers, to) && !rankOf(to))) {
        return false;
    }
    if (from == to || from == "app") {
        return true;
    }
    if (fromPlatform) {
        return platformMayInclude(from, to);
    }
    return rankOf(to) && *rankOf(to) < *rankOf(from);
}

std::vector<Violation> forbiddenIncludes(const std::vector<SourceFile>& files) {
    std::vector<Violation> violations;
    for (const SourceFile& file : files) {
        const std::string from = layerOf(file.path);
        for (const Include& include : includesIn(file.text)) {
            if (!include.quoted || (include.target.ends_with(".moc") && contains(qtLayers, from))) {
                continue;
            }
            const std::string to = layerOf(include.target);
            if (to.empty() || to.starts_with(".")) {
                violations.push_back({file.path, include.line,
                                      "write \"" + include.target + "\" from src/, folder first"});
            } else if (!mayInclude(from, to)) {
                violations.push_back(
                    {file.path, include.line,
                     from + " may not include " + to + " (" + include.target + ")"});
            }
        }
    }
    return violations;
}

std::vector<Violation> strayQtIncludes(const std::vector<SourceFile>& files) {
    std::vector<Violation> violations;
    for (const SourceFile& file : files) {
        const std::string layer = layerOf(file.path);
        if (contains(qtLayers, layer)) {
            continue;
        }
        for (const Include& include : includesIn(file.text)) {
            if (isQtHeader(include)) {
                violations.push_back({file.path, include.line,
                                      layer + " builds without Qt (" + include.target + ")"});
            }
        }
    }
    return violations;
}

std::vector<Violation> strayPlatformConditions(const std::vector<SourceFile>& files) {
    std::vector<Violation> violations;
    for (const SourceFile& file : files) {
        if (file.path.starts_with("platform/")) {
            continue;
        }
        for (const Condition& condition : conditionsIn(file.text)) {
            for (const std::string& identifier : identifiersIn(condition.text)) {
                if (namesAnOperatingSystem(identifier)) {
                    violations.push_back(
                        {file.path, condition.line,
                         "put what depends on " + identifier + " behind a port in platform/"});
                }
            }
        }
    }
    return violations;
}

std::vector<Violation> monitorOutsidePages(const std::vector<SourceFile>& files) {
    std::vector<Violation> violations;
    for (const SourceFile& file : files) {
        const std::string_view path(file.path);
        if (!path.starts_with("presentation/screens/") ||
            path.substr(0, path.rfind('.')).ends_with("_page")) {
            continue;
        }
        for (const Include& include : includesIn(file.text)) {
            if (include.target == "monitor/system_monitor.h") {
                violations.push_back({file.path, include.line,
                                      "only a page holds the monitor: take plain values here"});
            }
        }
    }
    return violations;
}

std::vector<Violation> upwardWindowIncludes(const std::vector<SourceFile>& files) {
    std::vector<Violation> violations;
    for (const SourceFile& file : files) {
        const auto from = windowRankOf(file.path);
        if (!from) {
            continue;
        }
        for (const Include& include : includesIn(file.text)) {
            const auto to = windowRankOf(include.target);
            if (to && *to > *from) {
                violations.push_back({file.path, include.line,
                                      "the shell includes screens, and both include the state, "
                                      "never the other way round (" +
                                          include.target + ")"});
            }
        }
    }
    return violations;
}

std::vector<Violation> includesBetweenScreens(const std::vector<SourceFile>& files) {
    std::vector<Violation> violations;
    for (const SourceFile& file : files) {
        const auto from = screenOf(file.path);
        if (!from) {
            continue;
        }
        for (const Include& include : includesIn(file.text)) {
            const auto to = screenOf(include.target);
            if (to && *to != *from && *to != "shared") {
                violations.push_back({file.path, include.line,
                                      "what several screens use is in presentation/screens/shared, "
                                      "texts in presentation/words (" +
                                          include.target + ")"});
            }
        }
    }
    return violations;
}

std::vector<Violation> overlongFiles(const std::vector<SourceFile>& files) {
    std::vector<Violation> violations;
    for (const SourceFile& file : files) {
        const auto lines =
            static_cast<std::size_t>(std::count(file.text.begin(), file.text.end(), '\n'));
        if (lines > maximumLines) {
            violations.push_back({file.path, 0,
                                  std::to_string(lines) +
                                      " lines: split it by meaning into files of at most " +
                                      std::to_string(maximumLines)});
        }
    }
    return violations;
}

}  // namespace tallowcrest::architecture
