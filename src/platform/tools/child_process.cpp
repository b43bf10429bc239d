#include "platform/tools/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/tools/child_environment.h"
#include "platform/tools/spawn_support.h"

namespace tallowcrest {

namespace {

class FileActions {
public:
    FileActions() : error_(::posix_spawn_file_actions_init(&actions_)), initialised_(error_ == 0) {}
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() {
        if (initialised_) {
            ::posix_spawn_file_actions_destroy(&actions_);
        }
    }

    int prepare(int standardOutput, int standardError) {
        if (error_ == 0) {
            error_ = ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null",
                                                        O_RDONLY, 0);
        }
        if (error_ == 0) {
            error_ = ::posix_spawn_file_actions_adddup2(&actions_, standardOutput, STDOUT_FILENO);
        }
        if (error_ == 0) {
            error_ = ::posix_spawn_file_actions_adddup2(&actions_, standardError, STDERR_FILENO);
        }
        return error_;
    }

    posix_spawn_file_actions_t& get() { return actions_; }

private:
    posix_spawn_file_actions_t actions_{};
    int error_;
    bool initialised_;
};

class SpawnAttributes {
public:
    SpawnAttributes() : error_(::posix_spawnattr_init(&attributes_)), initialised_(error_ == 0) {}
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;
    ~SpawnAttributes() {
        if (initialised_) {
            ::posix_spawnattr_destroy(&attributes_);
        }
    }

    int prepare() {
        if (error_ == 0) {
            // A session, not only a group: a background group that reads a password from the
            // terminal is stopped, and a stopped tool does not handle SIGTERM.
            error_ = ::posix_spawnattr_setflags(
                &attributes_, static_cast<short>(POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK |
                                                 POSIX_SPAWN_SETSIGDEF));
        }
        sigset_t blocked;
        sigset_t defaulted;
        // Macros on macOS, where a scope before them does not compile.
        sigemptyset(&blocked);
        sigfillset(&defaulted);
        sigdelset(&defaulted, SIGKILL);
        sigdelset(&defaulted, SIGSTOP);
        if (error_ == 0) {
            error_ = ::posix_spawnattr_setsigmask(&attributes_, &blocked);
        }
        if (error_ == 0) {
            error_ = ::posix_spawnattr_setsigdefault(&attributes_, &defaulted);
        }
        return error_;
    }

    posix_spawnattr_t& get() { return attributes_; }

private:
    posix_spawnattr_t attributes_{};
    int error_;
    bool initialised_;
};

bool containsNUL(const std::string& text) {
    return text.find('\0') != std::string::npos;
}

}  // namespace

ChildProcess::~ChildProcess() {
    if (pid_ > 0 && !hasExited()) {
        terminate();
        reap(0);
    }
}

int ChildProcess::spawn(const std::string& path, const std::vector<std::string>& arguments,
                        int standardOutput, int standardError) {
    if (!path.starts_with('/')) {
        return ENOENT;
    }
    if (containsNUL(path) || std::any_of(arguments.begin(), arguments.end(), containsNUL)) {
        return EINVAL;
    }

    FileActions actions;
    SpawnAttributes attributes;
    int error = actions.prepare(standardOutput, standardError);
    if (error == 0) {
        error = attributes.prepare();
    }
    if (error == 0) {
        error = spawn_support::closeOtherDescriptors(attributes.get(), actions.get());
    }
    if (error != 0) {
        return error;
    }

    std::vector<std::string> words{path};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argumentVector;
    argumentVector.reserve(words.size() + 1);
    for (std::string& word : words) {
        argumentVector.push_back(word.data());
    }
    argumentVector.push_back(nullptr);

    pid_t child = -1;
    error = ::posix_spawn(&child, path.c_str(), &actions.get(), &attributes.get(),
                          argumentVector.data(), childEnvironment());
    if (error != 0) {
        return error;
    }
    pid_ = child;
    exitDescriptor_ = spawn_support::openExitDescriptor(child);
    return 0;
}

bool ChildProcess::reap(int waitOptions) {
    if (pid_ < 0) {
        return true;
    }
    int status = 0;
    pid_t waited = -1;
    do {
        waited = ::waitpid(pid_, &status, waitOptions);
    } while (waited < 0 && errno == EINTR);
    if (waited == 0) {
        return false;
    }
    // Any other result than the pid means that the status is lost: other code in this process
    // ignores SIGCHLD.
    if (waited == pid_ && WIFEXITED(status)) {
        terminationStatus_ = WEXITSTATUS(status);
    }
    abandon();
    return true;
}

bool ChildProcess::hasExited() {
    return reap(WNOHANG);
}

void ChildProcess::terminate() {
    signal(SIGTERM);
}

void ChildProcess::kill() {
    signal(SIGKILL);
}

void ChildProcess::signal(int number) {
    if (pid_ < 0) {
        return;
    }
    // The group first, so that the tool's own children close the pipes too. As the child has not
    // been waited for, its pid and group cannot have been reused.
    ::kill(-pid_, number);
    if (::getpgid(pid_) != pid_) {
        ::kill(pid_, number);
    }
}

void ChildProcess::abandon() {
    pid_ = -1;
    exitDescriptor_.reset();
}

}  // namespace tallowcrest
