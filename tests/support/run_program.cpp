#include "tests/support/run_program.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <string_view>

extern char** environ;

namespace tallowcrest {
namespace {

using Clock = std::chrono::steady_clock;

void require(bool condition, const char* what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

/// A pipe whose ends are not inherited by child processes.
class Pipe {
public:
    Pipe() { require(pipe2(ends_.data(), O_CLOEXEC) == 0, "no pipe"); }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        closeReader();
        closeWriter();
    }

    int reader() const { return ends_[0]; }
    int writer() const { return ends_[1]; }
    void closeReader() { close(ends_[0]); }
    void closeWriter() { close(ends_[1]); }

private:
    static void close(int& end) {
        if (end != -1) {
            ::close(end);
            end = -1;
        }
    }

    std::array<int, 2> ends_{-1, -1};
};

bool names(const std::string& assignment, std::string_view name) {
    return assignment.size() > name.size() && assignment.starts_with(name) &&
           assignment[name.size()] == '=';
}

std::vector<std::string> environmentFor(const ProgramRun& run) {
    std::vector<std::string> result = run.withVariables;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string assignment = *entry;
        const auto isNamed = [&](const std::string& name) { return names(assignment, name); };
        const auto isReplaced = [&](const std::string& other) {
            return names(assignment, std::string_view(other).substr(0, other.find('=')));
        };
        if (std::none_of(run.withoutVariables.begin(), run.withoutVariables.end(), isNamed) &&
            std::none_of(run.withVariables.begin(), run.withVariables.end(), isReplaced)) {
            result.push_back(assignment);
        }
    }
    return result;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

pid_t spawn(const ProgramRun& run, const Pipe& output, const Pipe& errors) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    if (run.closeStandardOutput) {
        posix_spawn_file_actions_addclose(&actions, STDOUT_FILENO);
    } else if (!run.standardOutputPath.empty()) {
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, run.standardOutputPath.c_str(),
                                         O_WRONLY, 0);
    } else {
        posix_spawn_file_actions_adddup2(&actions, output.writer(), STDOUT_FILENO);
    }
    if (run.closeStandardError) {
        posix_spawn_file_actions_addclose(&actions, STDERR_FILENO);
    } else {
        posix_spawn_file_actions_adddup2(&actions, errors.writer(), STDERR_FILENO);
    }

    // An ignored signal stays ignored in the child; a handled one is reset to the default.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    struct sigaction before {};
    struct sigaction ignored {};
    ignored.sa_handler = SIG_IGN;
    sigset_t defaults;
    sigemptyset(&defaults);
    if (run.ignorePipeSignal) {
        sigaction(SIGPIPE, &ignored, &before);
    } else {
        sigaddset(&defaults, SIGPIPE);
    }
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

    std::vector<std::string> arguments{run.path};
    arguments.insert(arguments.end(), run.arguments.begin(), run.arguments.end());
    std::vector<std::string> environment = environmentFor(run);
    pid_t child = -1;
    const int error = posix_spawn(&child, run.path.c_str(), &actions, &attributes,
                                  pointersTo(arguments).data(), pointersTo(environment).data());
    if (run.ignorePipeSignal) {
        sigaction(SIGPIPE, &before, nullptr);
    }
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    require(error == 0, "the program cannot be started");
    return child;
}

/// Reads the available bytes. False at the end of the stream.
bool drain(int descriptor, std::string& text) {
    std::array<char, 65536> buffer;
    const ssize_t count = read(descriptor, buffer.data(), buffer.size());
    if (count > 0) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return count > 0 || (count == -1 && errno == EINTR);
}

void collect(const ProgramRun& run, Pipe& output, Pipe& errors, Clock::time_point deadline,
             ProgramResult& result) {
    while (output.reader() != -1 || errors.reader() != -1) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0) {
            return;
        }
        // poll() ignores a descriptor of -1.
        std::array<pollfd, 2> ends{{{output.reader(), POLLIN, 0}, {errors.reader(), POLLIN, 0}}};
        poll(ends.data(), ends.size(), static_cast<int>(left.count()));
        if (ends[0].revents != 0) {
            const bool goesOn = drain(output.reader(), result.standardOutput);
            const bool hasLine = result.standardOutput.find('\n') != std::string::npos;
            if (!goesOn || (run.readOneLineOnly && hasLine)) {
                output.closeReader();
            }
        }
        if (ends[1].revents != 0 && !drain(errors.reader(), result.standardError)) {
            errors.closeReader();
        }
    }
}

}  // namespace

ProgramResult runProgram(const ProgramRun& run, int deadlineSeconds) {
    const auto deadline = Clock::now() + std::chrono::seconds(deadlineSeconds);
    Pipe output;
    Pipe errors;
    const pid_t child = spawn(run, output, errors);
    output.closeWriter();
    errors.closeWriter();

    ProgramResult result;
    collect(run, output, errors, deadline, result);
    // Either both streams have ended and the program is about to exit, or the deadline has passed.
    if (Clock::now() >= deadline) {
        kill(child, SIGKILL);
    }
    int status = 0;
    while (waitpid(child, &status, 0) == -1 && errno == EINTR) {
    }
    if (WIFEXITED(status)) {
        result.status = WEXITSTATUS(status);
    } else {
        result.signal = WTERMSIG(status);
    }
    return result;
}

std::string shellOutput(const std::string& command) {
    return runProgram({.path = "/bin/sh", .arguments = {"-c", command}}).standardOutput;
}

}  // namespace tallowcrest
