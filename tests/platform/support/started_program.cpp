#include "tests/platform/support/started_program.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>

namespace tallowcrest {
namespace {

constexpr std::chrono::seconds timeout{30};

}  // namespace

StartedProgram::StartedProgram(const std::vector<std::string>& arguments) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("pipe failed");
    }
    output_ = UniqueFD(ends[0]);
    const UniqueFD writer(ends[1]);
    std::vector<char*> words;
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    pid_ = ::fork();
    if (pid_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::dup2(writer.get(), STDOUT_FILENO);
        ::dup2(::open("/dev/null", O_RDWR), STDERR_FILENO);
        ::execvp(words.front(), words.data());
        ::_exit(127);
    }
    if (pid_ < 0) {
        throw std::runtime_error("fork failed");
    }
}

std::string StartedProgram::line() {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    std::size_t end = received_.find('\n');
    while (end == std::string::npos) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd ready{output_.get(), POLLIN, 0};
        std::array<char, 256> bytes;
        if (left.count() <= 0 || ::poll(&ready, 1, static_cast<int>(left.count())) != 1) {
            break;
        }
        const ssize_t count = ::read(output_.get(), bytes.data(), bytes.size());
        if (count <= 0) {
            break;
        }
        received_.append(bytes.data(), static_cast<std::size_t>(count));
        end = received_.find('\n');
    }
    const std::string result = received_.substr(0, end);
    received_.erase(0, end == std::string::npos ? end : end + 1);
    return result;
}

bool StartedProgram::isRunning() {
    int status = 0;
    if (!status_ && ::waitpid(pid_, &status, WNOHANG) == pid_) {
        status_ = status;
    }
    return !status_;
}

std::optional<int> StartedProgram::exitStatus() {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (isRunning() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return status_ && WIFEXITED(*status_) ? std::optional(WEXITSTATUS(*status_)) : std::nullopt;
}

void StartedProgram::signal(int number) const {
    if (!status_) {
        ::kill(pid_, number);
    }
}

void StartedProgram::end() {
    if (isRunning()) {
        ::kill(pid_, SIGKILL);
        int status = 0;
        ::waitpid(pid_, &status, 0);
        status_ = status;
    }
}

}  // namespace tallowcrest
