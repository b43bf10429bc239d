#include "tests/platform/settings/writer_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <limits>
#include <stdexcept>

extern char** environ;

namespace tallowcrest {

const char* const settingsWriterPath = TALLOWCREST_BINARY_DIR "/tests/settings_writer";

WriterProcess::WriterProcess(const std::vector<std::string>& arguments) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    output_ = ends[0];
    std::vector<std::string> words{settingsWriterPath};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    const int error =
        ::posix_spawn(&pid_, settingsWriterPath, &actions, nullptr, pointers.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    if (error != 0) {
        ::close(output_);
        throw std::runtime_error("the writer cannot be started");
    }
}

WriterProcess::~WriterProcess() {
    kill();
    wait();
    ::close(output_);
}

std::string WriterProcess::readOutput(std::size_t count) {
    std::string text;
    std::array<char, 65536> buffer;
    while (text.size() < count) {
        const ssize_t piece =
            ::read(output_, buffer.data(), std::min(buffer.size(), count - text.size()));
        if (piece == 0 || (piece < 0 && errno != EINTR)) {
            break;
        }
        text.append(buffer.data(), piece > 0 ? static_cast<std::size_t>(piece) : 0);
    }
    return text;
}

std::string WriterProcess::readToEnd() {
    return readOutput(std::numeric_limits<std::size_t>::max());
}

void WriterProcess::kill() {
    if (pid_ > 0) {
        ::kill(pid_, SIGKILL);
    }
}

int WriterProcess::wait() {
    if (pid_ <= 0) {
        return -1;
    }
    int status = 0;
    while (::waitpid(pid_, &status, 0) == -1 && errno == EINTR) {
    }
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace tallowcrest
