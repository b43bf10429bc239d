#include "tests/platform/child_scenario.h"

#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace tallowcrest::child_scenario {

namespace {

std::string contents(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

}  // namespace

ToolRequest shellTool(const std::string& script, std::optional<std::chrono::milliseconds> timeout) {
    return {"/bin/sh", {"-c", script}, timeout, false};
}

bool eventually(const std::function<bool()>& condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

bool isRunning(pid_t pid) {
    const std::string text = contents("/proc/" + std::to_string(pid) + "/stat");
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

TemporaryFolder::TemporaryFolder()
    : root_((std::filesystem::temp_directory_path() / "tallowcrest-test-XXXXXX").string()) {
    if (::mkdtemp(root_.data()) == nullptr) {
        throw std::runtime_error("no temporary folder");
    }
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
}

std::string TemporaryFolder::file(const std::string& name, const std::string& text,
                                  mode_t mode) const {
    std::ofstream(path(name)) << text;
    if (::chmod(path(name).c_str(), mode) != 0) {
        throw std::runtime_error("cannot set the mode of " + name);
    }
    return path(name);
}

std::string TemporaryFolder::read(const std::string& name) const {
    return contents(path(name));
}

}  // namespace tallowcrest::child_scenario
