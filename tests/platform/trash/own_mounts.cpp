#include "tests/platform/trash/own_mounts.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <system_error>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

constexpr int cannotBeTried = 77;

/// The exit status of a process that did the work.
int statusOfChild(const std::function<int()>& work) {
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        int status = 1;
        try {
            status = work();
        } catch (const std::exception& problem) {
            std::fprintf(stderr, "%s\n", problem.what());
        }
        std::fflush(nullptr);
        ::_exit(status);
    }
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void require(int result, const std::string& what) {
    if (result != 0) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

int runTest(const std::function<void()>& work) {
    work();
    if (::testing::Test::HasFailure()) {
        return 1;
    }
    return ::testing::Test::IsSkipped() ? cannotBeTried : 0;
}

void expectGood(int status) {
    if (status == cannotBeTried) {
        GTEST_SKIP() << "this account may not do what the test needs";
    }
    EXPECT_EQ(status, 0);
}

}  // namespace

bool enterOwnMounts() {
    const std::string user = std::to_string(::getuid());
    const std::string group = std::to_string(::getgid());
    if (::unshare(CLONE_NEWNS) != 0) {
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
            return false;
        }
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
    }
    return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

void inOwnProcess(const std::function<void()>& work) {
    expectGood(statusOfChild([&] { return runTest(work); }));
}

void inOwnMounts(const std::function<void()>& work) {
    expectGood(statusOfChild([&] { return enterOwnMounts() ? runTest(work) : cannotBeTried; }));
}

void mountMemory(const std::string& folder, const std::string& options) {
    std::filesystem::create_directories(folder);
    require(::mount("none", folder.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, options.c_str()),
            "a file system in memory at " + folder);
}

void mountBind(const std::string& source, const std::string& place) {
    if (!std::filesystem::exists(place)) {
        std::filesystem::create_directories(place);
    }
    require(::mount(source.c_str(), place.c_str(), nullptr, MS_BIND, nullptr),
            source + " at " + place);
}

void enterOwnRoot(const std::string& folder, const std::string& without) {
    namespace fs = std::filesystem;
    mountMemory(folder);
    for (const fs::directory_entry& entry : fs::directory_iterator("/")) {
        const std::string shown = folder + entry.path().string();
        if (entry.path() == without) {
            continue;
        }
        if (entry.is_symlink()) {
            fs::copy_symlink(entry.path(), shown);
        } else if (entry.is_directory()) {
            fs::create_directory(shown);
            require(
                ::mount(entry.path().c_str(), shown.c_str(), nullptr, MS_BIND | MS_REC, nullptr),
                shown);
        }
    }
    require(::chroot(folder.c_str()), folder);
    require(::chdir("/"), "/");
}

void makeReadOnly(const std::string& folder) {
    require(::mount("none", folder.c_str(), nullptr,
                    MS_BIND | MS_REMOUNT | MS_RDONLY | MS_NOSUID | MS_NODEV, nullptr),
            folder + " read-only");
}

}  // namespace tallowcrest
