#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/trash/xdg_trash.h"
#include "tests/platform/trash/swap_names.h"
#include "tests/platform/trash/traced_process.h"
#include "tests/platform/trash/trash_contents.h"
#include "tests/support/file_text.h"
#include "tests/support/manual_clock.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

/// The identity of a file; all zero when there is none.
inline FileIdentity identityOf(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 ? FileIdentity{status.st_dev, status.st_ino}
                                               : FileIdentity{};
}

/// A home with a cache folder and a Trash.
class TrashFixture : public ::testing::Test {
protected:
    TrashFixture() { std::filesystem::create_directories(home / ".cache"); }

    void emptyHome() const {
        for (const auto& entry : std::filesystem::directory_iterator(home)) {
            std::filesystem::remove_all(entry.path());
        }
    }

    std::string inCache(const std::string& name) const { return home / ".cache" / name; }

    std::string write(const std::string& path, const std::string& content) const {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }

    /// Sets when a file, or a link itself, was last written.
    void setAge(const std::string& path, std::time_t seconds) const {
        const auto then = static_cast<std::time_t>(clock.now().unixSeconds()) - seconds;
        const std::array<timespec, 2> times{timespec{then, 0}, timespec{then, 0}};
        EXPECT_EQ(::utimensat(AT_FDCWD, path.c_str(), times.data(), AT_SYMLINK_NOFOLLOW), 0);
    }

    /// The names of all files with descriptions.
    std::set<std::string> describedNames() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(homeTrash / "info")) {
            names.insert(entry.path().filename());
        }
        return names;
    }

    /// A clean-up's request for a file as it is now.
    TrashRequest reviewed(const std::string& path) const {
        return {.path = path, .inside = home / ".cache", .identity = identityOf(path)};
    }

    /// A new file that was moved to the Trash.
    TrashItem trashed(const std::string& path, const std::string& content = "pixels") {
        const TrashOutcome outcome = trash.moveToTrash(reviewed(write(path, content)));
        EXPECT_TRUE(outcome.item) << outcome.error;
        return outcome.item.value_or(TrashItem{});
    }

    /// A file that was moved to the Trash of an empty home.
    TrashItem trashedAnew() {
        emptyHome();
        return trashed(inCache("a/thumb"));
    }

    /// Puts a file back again and again, each time in a process that `run` runs, while at one of
    /// its system calls its description and that of another file change their names. `check` gets
    /// whether the other one is lost.
    void putBackWithSwappedDescriptions(
        const std::function<TracedRun(const std::function<int()>& work,
                                      const std::function<bool(int stop)>& goesOn)>& run,
        const std::function<void(bool isLost)>& check) {
        const std::filesystem::path own = homeTrash / "info/thumb.trashinfo";
        const std::filesystem::path foreign = homeTrash / "info/foreign.trashinfo";
        std::map<PutBackOutcome::Result, int> results;
        const bool isTraced = atEachStop([&](int at) {
            const TrashItem item = trashedAnew();
            write(foreign, "foreign");
            const TracedRun ended =
                run([&] { return static_cast<int>(trash.putBack(item).result); },
                    [&](int stop) {
                        if (stop == at) {
                            swapNames(own, foreign);
                        }
                        return true;
                    });
            if (!ended.isPossible) {
                return ended;
            }
            const auto result = static_cast<PutBackOutcome::Result>(ended.status);
            ++results[result];
            check(fileText(foreign) != "foreign" && fileText(own) != "foreign");
            EXPECT_EQ(fileText(result == PutBackOutcome::Result::done
                                   ? item.path
                                   : (homeTrash / "files/thumb").string()),
                      "pixels");
            return ended;
        });
        if (isTraced) {
            EXPECT_GT(results[PutBackOutcome::Result::done], 2);
            EXPECT_GT(results[PutBackOutcome::Result::gone], 2);
        }
    }

    std::vector<TrashedFile> contents() const { return trashContents(homeTrash); }

    TemporaryFolder folder;
    std::filesystem::path home = folder.path() / "home";
    std::filesystem::path homeTrash = home / ".local/share/Trash";
    ManualClock clock;
    XdgTrash trash{homeTrash.string(), clock, atGreenwich};
};

/// Expects that a request leaves everything as it is, for a reason that contains `why`.
#define EXPECT_LEFT(outcome, why)                             \
    do {                                                      \
        const TrashOutcome result = (outcome);                \
        EXPECT_EQ(result.movedBytes, std::nullopt);           \
        EXPECT_THAT(result.error, ::testing::HasSubstr(why)); \
        EXPECT_THAT(contents(), ::testing::IsEmpty());        \
    } while (false)

}  // namespace tallowcrest
