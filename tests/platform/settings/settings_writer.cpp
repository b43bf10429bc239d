// A program that does to a settings file what a test cannot do to itself: be killed while it
// writes, hold a lock, meet a full disk. Each mode says on standard output what it has done.

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "core/settings/settings.h"
#include "platform/base/run_loop.h"
#include "platform/base/system_clock.h"
#include "platform/base/thread_work_queue.h"
#include "platform/settings/open_settings_store.h"
#include "tests/platform/settings/settings_values.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;

/// A machine that cannot do what a mode needs.
constexpr int cannotBeTried = 77;

class Surroundings {
public:
    OpenedStore open(const fs::path& file, int logPages) {
        return openSettingsStore(file, {jobs_, clock_,
                                        [this](const std::string& problem) {
                                            if (problem.empty()) {
                                                ++ends;
                                                return;
                                            }
                                            ++problems;
                                            latestProblem = problem;
                                        },
                                        logPages});
    }

    /// Runs what has been posted so far.
    void serve() {
        mainQueue_.post([this] { mainQueue_.stop(0); });
        mainQueue_.run();
    }

    int problems = 0;
    int ends = 0;  ///< of outages
    std::string latestProblem;

private:
    SystemClock clock_;
    RunLoop mainQueue_;
    Jobs jobs_{mainQueue_, queue_};  // the work queue joins its threads first
    ThreadWorkQueue queue_{[] {}};
};

/// All keys in turns, without an end, each value bearing one number more. A number that is written
/// to standard output is stored by then.
int writeWithoutEnd(const fs::path& file, std::int64_t first) {
    Surroundings surroundings;
    // A short log, so that it is moved, and restarted, at most of the moments of being killed.
    const OpenedStore opened = surroundings.open(file, 200);
    for (std::int64_t number = first;; ++number) {
        const auto& key =
            settings_keys::all[static_cast<std::size_t>(number) % settings_keys::all.size()];
        opened.store->write(key.name, valueFor(key, number));
        surroundings.serve();  // a further move of the log begins only when the last one is over
        if (surroundings.problems > 0) {
            return EXIT_FAILURE;
        }
        if (write(STDOUT_FILENO, &number, sizeof number) != sizeof number) {
            return EXIT_FAILURE;
        }
    }
}

int writeSome(const fs::path& file, std::int64_t first, int count) {
    Surroundings surroundings;
    const OpenedStore opened = surroundings.open(file, 200);
    for (const std::string& problem : opened.problems) {
        std::cout << problem << '\n';
    }
    for (std::int64_t number = first; number < first + count; ++number) {
        const auto& key =
            settings_keys::all[static_cast<std::size_t>(number) % settings_keys::all.size()];
        opened.store->write(key.name, valueFor(key, number));
    }
    return opened.problems.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// Keeps everybody else from the file until the program is killed.
int holdLock(const fs::path& file) {
    SqliteConnection connection;
    if (connection.open(file, SqliteConnection::Access::readWrite, {}) != SQLITE_OK ||
        connection.execute("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE") != SQLITE_OK) {
        return EXIT_FAILURE;
    }
    std::cout << "locked" << std::endl;
    pause();
    return EXIT_SUCCESS;
}

bool contains(const std::string& sentence, int systemError) {
    return sentence.find(std::strerror(systemError)) != std::string::npos;
}

bool require(bool condition, const char* what) {
    if (!condition) {
        std::cout << "not so: " << what << std::endl;
    }
    return condition;
}

/// What must hold when there is room for so much and no more, for which the system's reason is
/// `systemError`, and room again later.
int outgrow(const fs::path& file, int systemError, const std::function<void()>& makeRoom) {
    Surroundings surroundings;
    OpenedStore opened = surroundings.open(file, 100000);
    const auto& history = keyOf(settings_keys::historyKey);
    const auto& stop = keyOf(settings_keys::automationEmergencyStopKey);
    std::map<std::string, SettingsValue> last;
    std::int64_t number = 1;
    for (; surroundings.problems == 0 && number < 5000; ++number) {
        for (const settings_keys::Key& key : settings_keys::all) {
            const SettingsValue value = valueFor(key, number);
            opened.store->write(key.name, value);
            if (surroundings.problems > 0) {
                break;
            }
            last[std::string(key.name)] = value;
        }
    }
    bool good = require(opened.problems.empty(), "opened without a problem") &&
                require(number > 1 && number < 5000, "some values fit, and some did not");
    opened.store->write(history.name, valueFor(history, 7001));
    good = require(surroundings.problems == 1, "reported once") &&
           require(contains(surroundings.latestProblem, systemError),
                   surroundings.latestProblem.c_str()) &&
           good;
    for (const settings_keys::Key& key : settings_keys::all) {
        if (key.name != history.name) {
            good = require(opened.store->read(key.name) == last[std::string(key.name)],
                           "the older value is there") &&
                   good;
        }
    }
    const auto kept = opened.store->read(history.name);
    good = require(kept && numberOf(history, *kept), "the history is whole") && good;

    makeRoom();
    opened.store->write(stop.name, valueFor(stop, 7003));
    good = require(opened.store->read(history.name) == valueFor(history, 7001),
                   "what could not be saved is saved with the next value") &&
           require(opened.store->read(stop.name) == valueFor(stop, 7003), "and that value too") &&
           // The small disk never has the room that ends the outage of a full one.
           require(surroundings.ends == (systemError == ENOSPC ? 0 : 1), "the end is reported") &&
           good;
    opened.store.reset();

    const OpenedStore again = surroundings.open(file, 100000);
    good = require(again.problems.empty(), "sound afterwards") &&
           require(again.store->read(history.name) == valueFor(history, 7001), "and complete") &&
           good;
    return good ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// A file system of one megabyte over `folder`, for this process alone.
bool mountSmallDisk(const fs::path& folder) {
    const uid_t user = getuid();
    const gid_t group = getgid();
    if (unshare(CLONE_NEWNS) != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
            return false;
        }
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
    }
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", folder.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, "size=1m") == 0;
}

int fillDisk(const fs::path& folder) {
    if (!mountSmallDisk(folder)) {
        std::cout << "no file system can be mounted: " << std::strerror(errno) << std::endl;
        return cannotBeTried;
    }
    const fs::path ballast = folder / "ballast";
    std::ofstream(ballast) << std::string(200000, 'x');
    return outgrow(folder / "tallowcrest" / "settings.sqlite", ENOSPC,
                   [&] { fs::remove(ballast); });
}

/// Fills the disk before the store is opened.
int openOnFullDisk(const fs::path& folder, bool withSettings) {
    if (!mountSmallDisk(folder)) {
        std::cout << "no file system can be mounted: " << std::strerror(errno) << std::endl;
        return cannotBeTried;
    }
    const fs::path file = folder / "tallowcrest" / "settings.sqlite";
    const auto& stop = keyOf(settings_keys::automationEmergencyStopKey);
    Surroundings surroundings;
    if (withSettings) {
        surroundings.open(file, 1000).store->write(stop.name, true);
    }
    {
        std::ofstream ballast(folder / "ballast");
        const std::string block(4096, 'x');
        while (ballast.write(block.data(), 4096) && ballast.flush()) {
        }
    }
    const OpenedStore opened = surroundings.open(file, 1000);
    for (const std::string& problem : opened.problems) {
        std::cout << problem << '\n';
    }
    const auto expected = withSettings ? std::optional<SettingsValue>(true) : std::nullopt;
    bool good = require(opened.problems.size() == 1, "one problem") &&
                require(contains(opened.problems.front(), ENOSPC), "and it is the room") &&
                require(opened.store->read(stop.name) == expected, "what was stored is there");
    opened.store->write(stop.name, false);
    good = require(opened.store->read(stop.name) == SettingsValue(false), "memory serves") && good;
    return good ? EXIT_SUCCESS : EXIT_FAILURE;
}

int outgrowLimit(const fs::path& file) {
    // A file beyond the limit is otherwise the end of the process.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{1 << 20, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    return outgrow(file, EFBIG, [&] { setrlimit(RLIMIT_FSIZE, &before); });
}

int run(const std::vector<std::string>& arguments) {
    const std::string& mode = arguments.at(1);
    const fs::path place = arguments.at(2);
    if (mode == "write-without-end") {
        return writeWithoutEnd(place, std::stoll(arguments.at(3)));
    }
    if (mode == "write-some") {
        return writeSome(place, std::stoll(arguments.at(3)), std::stoi(arguments.at(4)));
    }
    if (mode == "hold-lock") {
        return holdLock(place);
    }
    if (mode == "fill-disk") {
        return fillDisk(place);
    }
    if (mode == "open-on-full-disk") {
        return openOnFullDisk(place, false);
    }
    if (mode == "open-stored-on-full-disk") {
        return openOnFullDisk(place, true);
    }
    return mode == "outgrow-limit" ? outgrowLimit(place) : EXIT_FAILURE;
}

}  // namespace
}  // namespace tallowcrest

int main(int argc, char** argv) {
    return tallowcrest::run({argv, argv + argc});
}
