#include "tests/architecture/link_rules.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace tallowcrest::architecture {
namespace {

constexpr std::string_view layerTargetPrefix = "tallowcrest_";
constexpr std::string_view windowlessProgram = "tallowcrest";

/// Not app/, which the program without a window links too.
bool isQtLibrary(std::string_view layer) {
    return layer != "app" && mayUseQt(layer);
}

bool isBuildFile(const SourceFile& file) {
    return file.path.ends_with("CMakeLists.txt");
}

bool isSource(const SourceFile& file) {
    return file.path.ends_with(".h") || file.path.ends_with(".cpp");
}

/// "platform_linux" is the name of platform/linux in the build files.
std::string layerOfTargetName(std::string name) {
    for (const std::string_view folder : {"platform", "presentation"}) {
        if (name.starts_with(std::string(folder) + '_')) {
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
    const bool toLayer = target.starts_with(layerTargetPrefix);
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
    if (!target.starts_with(layerTargetPrefix) && target != windowlessProgram) {
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
           arguments[0].starts_with(layerTargetPrefix) &&
           arguments[2].starts_with(layerTargetPrefix);
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
        if (file.path.ends_with(".cpp")) {
            result.insert(layerOf(file.path));
        }
    }
    return result;
}

}  // namespace

std::vector<Violation> wrongLinkEdges(const std::vector<SourceFile>& files) {
    std::vector<Violation> violations;
    const BuildPlan plan = buildPlanOf(files);

    for (const LinkEdge& edge : plan.edges) {
        const bool allowed = edge.toLayer ? mayInclude(edge.from, edge.to)
                                          : !edge.to.starts_with("Qt") || isQtLibrary(edge.from);
        if (!allowed) {
            violations.push_back(
                {edge.path, edge.line, edge.from + " may not be linked to " + edge.to});
        }
    }

    std::vector<LinkEdge> carrying = plan.edges;
    carrying.insert(carrying.end(), plan.choices.begin(), plan.choices.end());

    for (const std::string& layer : reachableFrom("app", carrying)) {
        if (isQtLibrary(layer)) {
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
