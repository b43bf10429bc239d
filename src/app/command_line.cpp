#include "app/command_line.h"

#include <cstdlib>
#include <string_view>
#include <variant>

#include <fmt/format.h>

#include "app/console.h"

namespace tallowcrest {
namespace {

int printed(std::string_view text) {
    return writeToStandardOutput(text) ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

CommandLine readCommandLine(const std::vector<std::string>& arguments) {
    const auto firstOption = arguments.begin() + (arguments.empty() ? 0 : 1);
    const auto parsed = parseOptions({firstOption, arguments.end()});
    if (const auto* error = std::get_if<OptionsError>(&parsed)) {
        complain(fmt::format("{} (see tallowcrest --help)", error->message));
        return {{}, usageStatus};
    }
    const auto& options = std::get<Options>(parsed);
    if (options.showHelp) {
        return {options, printed(helpText())};
    }
    if (options.showVersion) {
        return {options, printed(fmt::format("tallowcrest {}\n", TALLOWCREST_VERSION))};
    }
    return {options, std::nullopt};
}

}  // namespace tallowcrest
