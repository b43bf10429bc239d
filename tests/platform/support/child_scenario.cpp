#include "tests/platform/support/child_scenario.h"

#include <signal.h>
#include <sys/wait.h>

#include <filesystem>

#include "tests/support/file_text.h"

namespace tallowcrest::child_scenario {

ToolRequest shellTool(const std::string& script, std::optional<std::chrono::milliseconds> timeout) {
    return {"/bin/sh", {"-c", script}, timeout, false};
}

bool isRunning(pid_t pid) {
    const std::string text = fileText("/proc/" + std::to_string(pid) + "/stat");
    const auto bracket = text.rfind(") ");
    return bracket != std::string::npos && text[bracket + 2] != 'Z' && text[bracket + 2] != 'X';
}

bool hasChild() {
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

int openDescriptorCount() {
    int count = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count - 1;  // the one that the counting needed
}

}  // namespace tallowcrest::child_scenario
