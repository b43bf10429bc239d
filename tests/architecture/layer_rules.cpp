#include "tests/architecture/layer_rules.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <optional>
#include <set>

namespace tallowcrest::architecture {
namespace {

/// From the bottom up; each layer may include those before it.
constexpr std::array<std::string_view, 11> layers{
    "core", "sampling",    "actions", "remote",       "reports", "advisor",
    "disk", "integration", "monitor", "presentation", "app"};

/// The highest layer that declares ports for platform/ to implement.
constexpr std::string_view highestPortLayer = "integration";

constexpr std::array<std::string_view, 10> platformLayers{
    "platform",     "platform/base",  "platform/tools", "platform/instance", "platform/settings",
    "platform/icu", "platform/linux", "platform/macos", "platform/x11",      "platform/desktop"};

/// The widgets, which take plain values. A separate library, so that they cannot use the monitor.
constexpr std::string_view widgetLayer = "presentation/widgets";

/// The texts. A separate library, so that they are pure functions over values, tested without a
/// window.
constexpr std::string_view wordsLayer = "presentation/words";

constexpr std::array<std::string_view, 5> qtLayers{"presentation", widgetLayer, wordsLayer,
                                                   "platform/desktop", "app"};

constexpr std::array<std::string_view, 16> systemMacros{
    "__linux__",   "__linux", "linux",       "__gnu_linux__", "__APPLE__", "__MACH__",
    "_WIN32",      "_WIN64",  "__CYGWIN__",  "__unix__",      "__unix",    "unix",
    "__FreeBSD__", "__BSD__", "__OpenBSD__", "__ANDROID__"};

/// The libraries that may be linked to Qt. Not app/, which the program without a window links too.
constexpr std::array<std::string_view, 4> qtLibraries{"presentation", widgetLayer, wordsLayer,
                                                      "platform/desktop"};

constexpr std::string_view layerTargetPrefix = "tallowcrest_";
constexpr std::string_view windowlessProgram = "tallowcrest";

template <std::size_t size>
bool contains(const std::array<std::string_view, size>& values, std::string_view value) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

std::optional<std::size_t> rankOf(std::string_view layer) {
    const auto found = std::find(layers.begin(), layers.end(), layer);
    if (found == layers.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - layers.begin());
}

bool platformMayInclude(std::string_view from, std::string_view to) {
    if (const auto rank = rankOf(to)) {
        return *rank <= *rankOf(highestPortLayer);
    }
    // The desktop services also ask X11 windows and listen for other starts of the program.
    if (from == "platform/desktop" && (to == "platform/x11" || to == "platform/instance")) {
        return true;
    }
    if (from == "platform" || to == "platform") {
        return from != "platform";
    }
    return to == "platform/base" || (to == "platform/tools" && from != "platform/base");
}

bool isSource(const SourceFile& file) {
    return endsWith(file.path, ".h") || endsWith(file.path, ".cpp");
}

bool isBuildFile(const SourceFile& file) {
    return endsWith(file.path, "CMakeLists.txt");
}

bool isQtHeader(const Include& include) {
    const std::string& target = include.target;
    if (target.size() < 2 || include.quoted) {
        return false;
    }
    const bool moduleOrClass =
        target[0] == 'Q' && std::isalpha(static_cast<unsigned char>(target[1])) != 0;
    const bool lowerCaseHeader = target[0] == 'q' && endsWith(target, ".h");
    return moduleOrClass || lowerCaseHeader || startsWith(target, "private/q");
}

bool namesAnOperatingSystem(const std::string& identifier) {
    return contains(systemMacros, identifier) || startsWith(identifier, "Q_OS_") ||
           startsWith(identifier, "TARGET_OS_");
}

/// "platform_linux" is the name of platform/linux in the build files.
std::string layerOfTargetName(std::string name) {
    for (const std::string_view folder : {"platform", "presentation"}) {
        if (startsWith(name, std::string(folder) + '_')) {
            name[folder.size()] = '/';
        }
    }
    return name;
}

std::string layerOfTarget(const std::string& target) {
    return layerOfTargetName(target.substr(layerTargetPrefix.size()));
}

struct LinkEdge {
    std::string from;
    std::string to;  ///< a layer, or an external library such as "Qt6::Core"
    bool toLayer;
    std::string path;
    std::size_t line;
};

void addEdge(std::vector<LinkEdge>& edges, const std::string& from, const std::string& target,
             const std::string& path, std::size_t line) {
    const bool toLayer = startsWith(target, layerTargetPrefix);
    const std::string to =
        toLayer ? layerOfTargetName(target.substr(layerTargetPrefix.size())) : target;
    if (to != "options") {
        edges.push_back({from, to, toLayer, path, line});
    }
}

/// The edges of one tallowcrest_layer() command.
void addLayerEdges(std::vector<LinkEdge>& edges, const BuildCommand& command,
                   const std::string& path) {
    const std::string from = layerOfTargetName(command.arguments.front());
    std::string section;
    for (const std::string& argument : command.arguments) {
        if (argument == "SOURCES" || argument == "DEPENDS" || argument == "LIBRARIES") {
            section = argument;
        } else if (section == "DEPENDS") {
            addEdge(edges, from, std::string(layerTargetPrefix) + argument, path, command.line);
        } else if (section == "LIBRARIES") {
            addEdge(edges, from, argument, path, command.line);
        }
    }
}

/// The edges of one target_link_libraries() command for a layer or for the program without a
/// window.
void addPlainEdges(std::vector<LinkEdge>& edges, const BuildCommand& command,
                   const std::string& path) {
    const std::string& target = command.arguments.front();
    if (!startsWith(target, layerTargetPrefix) && target != windowlessProgram) {
        return;
    }
    const std::string from = target == windowlessProgram ? "app" : layerOfTarget(target);
    for (std::size_t at = 1; at < command.arguments.size(); ++at) {
        const std::string& argument = command.arguments[at];
        if (argument != "PUBLIC" && argument != "PRIVATE" && argument != "INTERFACE") {
            addEdge(edges, from, argument, path, command.line);
        }
    }
}

/// The aliases of layers, by name. The folder that declares an alias is responsible for it.
using Aliases = std::map<std::string, std::string>;

bool isLayerAlias(const BuildCommand& command) {
    const std::vector<std::string>& arguments = command.arguments;
    return command.name == "add_library" && arguments.size() == 3 && arguments[1] == "ALIAS" &&
           startsWith(arguments[0], layerTargetPrefix) &&
           startsWith(arguments[2], layerTargetPrefix);
}

struct BuildPlan {
    std::set<std::string> declaredLayers;
    std::vector<LinkEdge> edges;
    std::vector<LinkEdge>
        choices;  ///< from the folder of an alias to the layers that it can stand for
};

BuildPlan buildPlanOf(const std::vector<SourceFile>& files) {
    BuildPlan plan;
    Aliases aliases;
    for (const SourceFile& file : files) {
        if (!isBuildFile(file)) {
            continue;
        }
        for (const BuildCommand& command : buildCommandsIn(file.text)) {
            if (command.arguments.empty()) {
                continue;
            }
            if (command.name == "tallowcrest_layer") {
                plan.declaredLayers.insert(layerOfTargetName(command.arguments.front()));
                addLayerEdges(plan.edges, command, file.path);
            } else if (command.name == "target_link_libraries") {
                addPlainEdges(plan.edges, command, file.path);
            } else if (isLayerAlias(command)) {
                const std::string layer = layerOf(file.path);
                aliases[layerOfTarget(command.arguments[0])] = layer;
                addEdge(plan.choices, layer, command.arguments[2], file.path, command.line);
            }
        }
    }
    for (LinkEdge& edge : plan.edges) {
        const auto alias = aliases.find(edge.to);
        if (edge.toLayer && alias != aliases.end()) {
            edge.to = alias->second;
        }
    }
    return plan;
}

/// All layers that `layer` reaches along declared edges, itself included.
std::set<std::string> reachableFrom(const std::string& layer, const std::vector<LinkEdge>& edges) {
    std::set<std::string> reached{layer};
    std::vector<std::string> waiting{layer};
    while (!waiting.empty()) {
        const std::string current = waiting.back();
        waiting.pop_back();
        for (const LinkEdge& edge : edges) {
            if (edge.toLayer && edge.from == current && reached.insert(edge.to).second) {
                waiting.push_back(edge.to);
            }
        }
    }
    return reached;
}

/// A layer that has only headers needs no library and is not linked.
std::set<std::string> layersWithCode(const std::vector<SourceFile>& files) {
    std::set<std::string> result;
    for (const SourceFile& file : files) {
        if (endsWith(file.path, ".cpp")) {
            result.insert(layerOf(file.path));
        }
    }
    return result;
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
    if (startsWith(path, std::string(widgetLayer) + '/')) {
        return std::string(widgetLayer);
    }
    const bool isLines = startsWith(path, "presentation/screens/") &&
                         endsWith(path.substr(0, path.rfind('.')), "_lines");
    return isLines || startsWith(path, std::string(wordsLayer) + '/') ? std::string(wordsLayer)
                                                                      : std::string(folder);
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
            if (!include.quoted || (endsWith(include.target, ".moc") && contains(qtLayers, from))) {
                continue;
            }
            const std::string to = layerOf(include.target);
            if (to.empty() || startsWith(to, ".")) {
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
        if (startsWith(file.path, "platform/")) {
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
        if (!startsWith(path, "presentation/screens/") ||
            endsWith(path.substr(0, path.rfind('.')), "_page")) {
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

std::vector<Violation> overlongFiles(const std::vector<SourceFile>& files) {
    std::vector<Violation> violations;
    for (const SourceFile& file : files) {
        const auto lines =
            static_cast<std::size_t>(std::count(file.text.begin(), file.text.end(), '\n'));
        if (lines > maximumLines) {
            violations.push_back({file.path, 0,
                                  std::to_string(lines) + " lines: split it by meaning into files "
                                                          "of about 400 at most"});
        }
    }
    return violations;
}

std::vector<Violation> wrongLinkEdges(const std::vector<SourceFile>& files) {
    std::vector<Violation> violations;
    const BuildPlan plan = buildPlanOf(files);

    for (const LinkEdge& edge : plan.edges) {
        const bool allowed = edge.toLayer
                                 ? mayInclude(edge.from, edge.to)
                                 : !startsWith(edge.to, "Qt") || contains(qtLibraries, edge.from);
        if (!allowed) {
            violations.push_back(
                {edge.path, edge.line, edge.from + " may not be linked to " + edge.to});
        }
    }

    std::vector<LinkEdge> carrying = plan.edges;
    carrying.insert(carrying.end(), plan.choices.begin(), plan.choices.end());

    for (const std::string& layer : reachableFrom("app", carrying)) {
        if (contains(qtLibraries, layer)) {
            violations.push_back({"app", 0, "the program without a window reaches " + layer});
        }
    }

    const std::set<std::string> withCode = layersWithCode(files);
    for (const std::string& layer : withCode) {
        if (layer != "app" && plan.declaredLayers.count(layer) == 0) {
            violations.push_back({layer, 0, "declares no tallowcrest_layer() for its sources"});
        }
    }

    for (const SourceFile& file : files) {
        const std::string from = layerOf(file.path);
        if (!isSource(file) || from == "app" || plan.declaredLayers.count(from) == 0) {
            continue;
        }
        const std::set<std::string> reachable = reachableFrom(from, carrying);
        for (const Include& include : includesIn(file.text)) {
            const std::string to = layerOf(include.target);
            if (include.quoted && mayInclude(from, to) && withCode.count(to) != 0 &&
                reachable.count(to) == 0) {
                violations.push_back({file.path, include.line,
                                      from + " includes " + to + " without being linked to it"});
            }
        }
    }
    return violations;
}

}  // namespace tallowcrest::architecture
