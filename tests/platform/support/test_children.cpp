#include "tests/platform/support/test_children.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <stdexcept>

#include "tests/support/file_text.h"

namespace tallowcrest {

TestChild::TestChild(const std::function<void()>& work) : pid_(::fork()) {
    if (pid_ == 0) {
        work();
        ::_exit(0);
    }
    if (pid_ < 0) {
        throw std::runtime_error("fork failed");
    }
}

void TestChild::end() {
    if (pid_ > 0) {
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }
}

void TestChild::becomeZombie() {
    ::kill(pid_, SIGKILL);
    siginfo_t info{};
    ::waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOWAIT);
}

void waitForever() {
    for (;;) {
        ::pause();
    }
}

void spin() {
    for (volatile unsigned count = 0;;) {
        count = count + 1;
    }
}

std::optional<int> statusOfChild(const std::function<int()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(work());
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return std::nullopt;
    }
    return WEXITSTATUS(status);
}

std::optional<ProcessSample> rowOf(const std::vector<ProcessSample>& rows, std::int64_t pid) {
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [pid](const ProcessSample& row) { return row.pid == pid; });
    return found == rows.end() ? std::nullopt : std::optional(*found);
}

ToolRequest shellTool(const std::string& script, std::optional<std::chrono::milliseconds> timeout) {
    return {"/bin/sh", {"-c", script}, timeout, false};
}

bool isRunning(pid_t pid) {
    const std::string text = fileText("/proc/" + std::to_string(pid) + "/stat");
    const auto nameEnd = text.rfind(") ");
    return nameEnd != std::string::npos && text[nameEnd + 2] != 'Z' && text[nameEnd + 2] != 'X';
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
    return count - 1;  // the iterator's own
}

}  // namespace tallowcrest
