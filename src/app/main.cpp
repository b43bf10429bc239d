#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <fmt/format.h>

#include "app/console.h"
#include "app/headless.h"
#include "app/options.h"
#include "platform/host.h"
#include "platform/posix/standard_streams.h"

// The entry program knows nothing of the window's libraries: loading them alone would cost a
// headless run more memory than all of its own work. The window is a program of its own beside
// this one, which takes this one's place.

namespace tallowcrest {
namespace {

constexpr int usageStatus = 2;
constexpr int noWindowStatus = 1;
constexpr const char* windowProgram = "tallowcrest-desktop";

int openWindow(char** argv) {
    if (!host::hasDisplay()) {
        complain("there is no display to open a window on. Try: tallowcrest --headless");
        return noWindowStatus;
    }
    const std::filesystem::path self = host::executablePath();
    if (self.empty()) {
        // A bare name would be looked for in the working directory, where anybody may have put it.
        complain("the window cannot be opened: this program's own place is not known");
        return noWindowStatus;
    }
    const std::filesystem::path program = self.parent_path() / windowProgram;
    execv(program.c_str(), argv);
    complain(
        fmt::format("the window cannot be opened: {}: {}", program.string(), std::strerror(errno)));
    return noWindowStatus;
}

int printed(std::string_view text) {
    return writeToStandardOutput(text) ? EXIT_SUCCESS : EXIT_FAILURE;
}

int run(const std::vector<std::string>& arguments, char** argv) {
    const auto parsed = parseOptions({arguments.begin() + 1, arguments.end()});
    if (const auto* error = std::get_if<OptionsError>(&parsed)) {
        complain(fmt::format("{} (see tallowcrest --help)", error->message));
        return usageStatus;
    }
    const auto& options = std::get<Options>(parsed);
    if (options.showHelp) {
        return printed(helpText());
    }
    if (options.showVersion) {
        return printed(fmt::format("tallowcrest {}\n", TALLOWCREST_VERSION));
    }
    return options.headless ? runHeadless(options, arguments) : openWindow(argv);
}

}  // namespace
}  // namespace tallowcrest

int main(int argc, char** argv) {
    tallowcrest::occupyStandardDescriptors();
    std::vector<std::string> arguments(argv, argv + argc);
    if (arguments.empty()) {
        arguments.emplace_back("tallowcrest");
    }
    return tallowcrest::run(arguments, argv);
}
