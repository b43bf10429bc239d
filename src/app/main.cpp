#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "advisor/openai_key.h"
#include "app/console.h"
#include "app/environment_key.h"
#include "app/headless.h"
#include "app/http_module.h"
#include "app/options.h"
#include "platform/base/descriptor_setup.h"
#include "platform/base/environment.h"
#include "platform/host.h"

// The entry program is not linked to the window's libraries: loading them alone would take more
// memory than all the work of a headless run. The window is a separate program in the same folder,
// which replaces this one.

namespace tallowcrest {
namespace {

constexpr int noWindowStatus = 1;
constexpr const char* windowProgram = "tallowcrest-desktop";

int openWindow(char** argv) {
    if (!host::hasDisplay()) {
        complain("there is no display to open a window on. Try: tallowcrest --headless");
        return noWindowStatus;
    }
    const std::filesystem::path self = host::executablePath();
    if (self.empty()) {
        // A bare name would be looked up in the working directory, where anybody could place one.
        complain("the window cannot be opened: this program's own place is not known");
        return noWindowStatus;
    }
    const std::filesystem::path program = self.parent_path() / windowProgram;
    execv(program.c_str(), argv);
    complain(
        fmt::format("the window cannot be opened: {}: {}", program.string(), std::strerror(errno)));
    return noWindowStatus;
}

int run(const std::vector<std::string>& arguments, char** argv) {
    // In each run, because programs that are started must not get it.
    auto key = takeEnvironmentKey();
    forbidSecretsFile();
    const CommandLine commandLine = readCommandLine(arguments);
    if (commandLine.status) {
        return *commandLine.status;
    }
    if (!commandLine.options.headless) {
        return openWindow(argv);
    }
    const Options& options = commandLine.options;
    if (key.isBad && (options.ask || options.analyze)) {
        complain(fmt::format("{}: {}", keyVariable, notAKey));
        return runHeadless(options, {});
    }
    // Without a key, too: a server of the owner's own may need none.
    return runHeadless(options, {std::move(key.store), std::make_shared<HttpModule>()});
}

}  // namespace
}  // namespace tallowcrest

int main(int argc, char** argv) {
    tallowcrest::occupyStandardDescriptors();
    return tallowcrest::run({argv, argv + argc}, argv);
}
