#include "remote/tailnet_reading.h"

#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <system_error>

#include <fmt/format.h>

#include "actions/tool_runner.h"
#include "remote/local_api.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;

bool isExecutableFile(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored) && ::access(path.c_str(), X_OK) == 0;
}

std::optional<TailnetState> askDaemon(const TailnetSources& sources, const std::stop_token& stop) {
    if (!sources.daemon) {
        return std::nullopt;
    }
    const std::optional<std::string> answer = sources.daemon(local_api::statusRequest, stop);
    const auto status = answer ? local_api::bodyOf(*answer) : std::nullopt;
    return status ? parseTailStatus(*status, sources.locale) : std::nullopt;
}

}  // namespace

TailnetState readTailnet(const TailnetSources& sources, const std::stop_token& stop) {
    if (std::optional<TailnetState> state = askDaemon(sources, stop)) {
        return std::move(*state);
    }
    TailnetState state;
    if (!stop.stop_requested()) {
        std::optional<std::vector<TailDevice>> devices = loadTailDevices(sources, stop);
        state.isAnswered = devices.has_value();
        state.tailDevices = std::move(devices).value_or(std::vector<TailDevice>());
    }
    if (!stop.stop_requested()) {
        state.tailscaleHealthIssues = loadTailscaleHealthIssues(sources, stop);
    }
    return state;
}

std::optional<std::vector<TailDevice>> loadTailDevices(const TailnetSources& sources,
                                                       const std::stop_token& stop) {
    if (!isExecutableFile(sources.cli)) {
        return std::nullopt;
    }
    const std::string json = sources.tools.runTool(sources.cli, {"status", "--json"}, 2000ms, stop);
    std::optional<TailnetState> status = parseTailStatus(json, sources.locale);
    return status ? std::optional(std::move(status->tailDevices)) : std::nullopt;
}

std::vector<std::string> loadTailscaleHealthIssues(const TailnetSources& sources,
                                                   const std::stop_token& stop) {
    if (!isExecutableFile(sources.cli)) {
        return {fmt::format("Tailscale CLI was not found at {}.", sources.cli)};
    }
    return parseTailscaleHealthIssues(sources.tools.runTool(sources.cli, {"status"}, 3000ms, stop));
}

}  // namespace tallowcrest
