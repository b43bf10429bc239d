// One move to the Trash that is killed, or met by another process, between any two of its system
// calls.

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/trash/own_mounts.h"
#include "tests/platform/trash/swap_names.h"
#include "tests/platform/trash/traced_process.h"
#include "tests/platform/trash/trash_fixture.h"
#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

enum Result { moved, left, leftInTrash };

/// A file under review, and what another process puts in its way.
class InterruptedMoveTest : public TrashFixture {
protected:
    void setUpWorld() {
        emptyHome();
        write(path, "reviewed");
        write(decoy, "decoy");
        write(inCache("other/b/file"), "decoy in another folder");
        write(outside / "b/file", "outside");
        fs::create_symlink(outside / "b/file", inCache("link to file"));
        fs::create_symlink(outside / "b", inCache("link to b"));
        fs::create_symlink(outside, inCache("link to a"));
        fs::create_symlink(outside, home / "link to cache");
        write(outside / "a/b/file", "also outside");
        fs::create_directory(inCache("folder"));
        outsideBefore = stateOf(outside / "b/file");
    }

    Result move(const TrashRequest& request) {
        const TrashOutcome outcome = trash.moveToTrash(request);
        if (outcome.movedBytes) {
            return moved;
        }
        return outcome.error.find("in the Trash") == std::string::npos ? left : leftInTrash;
    }

    /// How often each content is found, in its places and in the Trash.
    std::map<std::string, int> contentsFound() const {
        std::map<std::string, int> found;
        for (const auto& entry : fs::recursive_directory_iterator(home)) {
            if (entry.symlink_status().type() == fs::file_type::regular &&
                entry.path().extension() != ".trashinfo") {
                ++found[fileText(entry.path())];
            }
        }
        return found;
    }

    struct State {
        FileIdentity identity;
        std::int64_t changeSeconds = 0;
        std::int64_t changeNanoseconds = 0;
        bool operator==(const State&) const = default;
    };

    /// A rename changes the time of the last change of a file.
    static State stateOf(const fs::path& file) {
        struct stat status {};
        ::lstat(file.c_str(), &status);
        return {{status.st_dev, status.st_ino}, status.st_ctim.tv_sec, status.st_ctim.tv_nsec};
    }

    void expectNothingLost(int expectedFiles = 5) const {
        const auto found = contentsFound();
        EXPECT_EQ(found.size(), static_cast<std::size_t>(expectedFiles));
        for (const auto& [content, times] : found) {
            EXPECT_EQ(times, 1) << content;
        }
        EXPECT_EQ(stateOf(outside / "b/file"), outsideBefore) << "was touched";
        for (const TrashedFile& file : contents()) {
            if (file.isThere) {
                EXPECT_EQ(file.restorePath, path) << "cannot be restored";
                EXPECT_THAT(file.content, ::testing::Not(HasSubstr("outside")));
            }
        }
    }

    bool isInTrash(const std::string& content) const {
        for (const TrashedFile& file : contents()) {
            if (file.content == content) {
                return true;
            }
        }
        return false;
    }

    const std::string path = inCache("a/b/file");
    const std::string decoy = inCache("decoy");
    const fs::path outside = home / "Documents";
    State outsideBefore;
};

TEST_F(InterruptedMoveTest, AKillAtAnySystemCallLeavesTheFileInItsPlaceOrRestorable) {
    inOwnMounts([&] {
        mountMemory(home);
        int inPlace = 0;
        int restorable = 0;
        bool isKilled = true;
        for (int killedAt = 0; isKilled; ++killedAt) {
            setUpWorld();
            const TrashRequest request = reviewed(path);
            const TracedRun run = runTraced([&] { return move(request); },
                                            [&](int stop) { return stop != killedAt; });
            if (!run.isPossible) {
                GTEST_SKIP() << "this account may not trace its own processes";
            }
            isKilled = run.status == -1;
            SCOPED_TRACE("killed at stop " + std::to_string(killedAt));
            expectNothingLost();
            (fs::exists(path) ? inPlace : restorable) += 1;
            // What a kill leaves does not hinder the next attempt.
            if (fs::exists(path)) {
                EXPECT_EQ(move(request), moved);
                expectNothingLost();
            }
            ASSERT_FALSE(HasFailure());
        }
        EXPECT_GT(inPlace, 20);
        EXPECT_GT(restorable, 3);
    });
}

/// What another process does at one moment.
struct Attack {
    std::string name;
    std::function<bool(const fs::path& cache)> begin;
    std::function<void(const fs::path& cache)> end = {};  ///< before the judgement
};

std::vector<Attack> attacks() {
    const auto exchanging = [](const char* one, const char* other) {
        return [=](const fs::path& cache) { return swapNames(cache / one, cache / other); };
    };
    const auto binding = [](const char* source, const char* place) {
        return Attack{
            std::string("a mount over ") + place,
            [=](const fs::path& cache) {
                return ::mount((cache / source).c_str(), (cache / place).c_str(), nullptr, MS_BIND,
                               nullptr) == 0;
            },
            [=](const fs::path& cache) { ::umount2((cache / place).c_str(), MNT_DETACH); }};
    };
    const auto swapCache = [](const fs::path& cache) {
        return swapNames(cache, cache.parent_path() / "link to cache");
    };
    return {
        {"another file", exchanging("a/b/file", "decoy")},
        {"a link to a file outside", exchanging("a/b/file", "link to file")},
        {"a folder", exchanging("a/b/file", "folder")},
        {"a link for the folder", exchanging("a/b", "link to b")},
        {"a link for the folder above", exchanging("a", "link to a")},
        {"a link for the cache", swapCache, swapCache},
        {"another folder", exchanging("a/b", "other/b")},
        {"no file",
         [](const fs::path& cache) {
             return ::rename((cache / "a/b/file").c_str(), (cache / "elsewhere").c_str()) == 0;
         }},
        {"no folder",
         [](const fs::path& cache) {
             return ::rename((cache / "a/b").c_str(), (cache / "elsewhere").c_str()) == 0;
         }},
        {"a folder that leaves the cache",
         [](const fs::path& cache) {
             return ::rename((cache / "a").c_str(), (cache / "../left").c_str()) == 0;
         }},
        binding("../Documents/b", "a/b"),
        binding("../Documents", "a"),
        binding("../Documents/b/file", "a/b/file"),
    };
}

TEST_F(InterruptedMoveTest, ASwapAtAnySystemCallLosesNothingAndTouchesNothingElse) {
    inOwnMounts([&] {
        mountMemory(home);
        for (const Attack& attack : attacks()) {
            SCOPED_TRACE(attack.name);
            std::map<int, int> results;
            const bool isTraced = atEachStop([&](int at) {
                setUpWorld();
                const TrashRequest request = reviewed(path);
                bool wasInPlace = false;
                const TracedRun run = runTraced([&] { return move(request); },
                                                [&](int stop) {
                                                    if (stop == at) {
                                                        wasInPlace = fs::exists(path);
                                                        attack.begin(home / ".cache");
                                                    }
                                                    return true;
                                                });
                if (!run.isPossible) {
                    return run;
                }
                if (attack.end) {
                    attack.end(home / ".cache");
                }
                ++results[run.status];
                expectNothingLost();
                EXPECT_EQ(isInTrash("reviewed"), run.status == moved);
                EXPECT_FALSE(wasInPlace && run.status == moved) << "from another place";
                EXPECT_FALSE(isInTrash("decoy") || isInTrash("decoy in another folder"));
                return run;
            });
            if (!isTraced) {
                return;
            }
            EXPECT_GT(results[moved], 0) << attack.name << " after the move";
            EXPECT_GT(results[left], 0) << attack.name << " before the move";
            EXPECT_EQ(results[leftInTrash], 0) << attack.name;
        }
    });
}

TEST_F(InterruptedMoveTest, WhatCannotBePutBackIsRestorable) {
    inOwnMounts([&] {
        mountMemory(home);
        int stops = 1;
        int inTrash = 0;
        for (int at = 0; at < stops; ++at) {
            for (int later = at + 1; later <= at + 6; later += 2) {
                setUpWorld();
                const TrashRequest request = reviewed(path);
                bool isTaken = false;
                const TracedRun run = runTraced(
                    [&] { return move(request); },
                    [&](int stop) {
                        if (stop == at) {
                            swapNames(path, decoy);
                        } else if (stop == later && !fs::exists(fs::symlink_status(path))) {
                            write(path, "took the place");
                            isTaken = true;
                        }
                        return true;
                    });
                if (!run.isPossible) {
                    GTEST_SKIP() << "this account may not trace its own processes";
                }
                stops = run.stops;
                SCOPED_TRACE(std::to_string(at) + " and " + std::to_string(later));
                expectNothingLost(isTaken ? 6 : 5);
                EXPECT_EQ(isInTrash("reviewed"), run.status == moved);
                EXPECT_EQ(isInTrash("decoy"), run.status == leftInTrash);
                inTrash += run.status == leftInTrash ? 1 : 0;
                ASSERT_FALSE(HasFailure());
            }
        }
        EXPECT_GT(inTrash, 0) << "the case did not occur";
    });
}

TEST_F(InterruptedMoveTest, AFolderThatMovesWhileItsVolumeIsSoughtGivesNoWrongPath) {
    inOwnMounts([&] {
        mountMemory(home);
        XdgTrash onVolume({}, clock, atGreenwich);
        int stops = 1;
        int killed = 0;
        for (int at = 0; at < stops; ++at) {
            setUpWorld();
            const TrashRequest request = reviewed(path);
            const std::string elsewhere = inCache("folder/file");
            const auto attackThenKill = [&](int stop) {
                if (stop == at) {
                    fs::remove(inCache("folder"));
                    fs::rename(inCache("a/b"), inCache("folder"));
                }
                // At the worst moment: before it can be put back.
                return fs::exists(path) || fs::exists(elsewhere);
            };
            const TracedRun run =
                runTraced([&] { return onVolume.moveToTrash(request).movedBytes ? moved : left; },
                          attackThenKill);
            if (!run.isPossible) {
                GTEST_SKIP() << "this account may not trace its own processes";
            }
            stops = run.status == -1 ? at + 2 : run.stops;
            killed += run.status == -1 ? 1 : 0;
            SCOPED_TRACE("at stop " + std::to_string(at));
            for (const TrashedFile& file : trashContents(home / ".Trash-0")) {
                if (file.isThere) {
                    EXPECT_THAT(file.restorePath,
                                ::testing::AnyOf(".cache/a/b/file", ".cache/folder/file"));
                }
            }
            if (at > 0 && fs::exists(inCache("a/b"))) {
                break;  // killed before the attack
            }
            ASSERT_FALSE(HasFailure());
        }
        EXPECT_GT(killed, 0);
    });
}

TEST_F(InterruptedMoveTest, AFileThatOutgrowsItsLimitMeanwhileIsPutBack) {
    inOwnMounts([&] {
        mountMemory(home);
        std::map<int, int> results;
        const bool isTraced = atEachStop([&](int at) {
            setUpWorld();
            TrashRequest request = reviewed(path);
            request.maximumBytes = 8;
            const int file = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
            const TracedRun run =
                runTraced([&] { return move(request); },
                          [&](int stop) { return stop != at || ::write(file, "!", 1) == 1; });
            ::close(file);
            if (!run.isPossible) {
                return run;
            }
            ++results[run.status];
            expectNothingLost();
            EXPECT_EQ(isInTrash("reviewed!"), run.status == moved);
            return run;
        });
        if (isTraced) {
            EXPECT_GT(results[moved], 0);
            EXPECT_GT(results[left], 0);
        }
    });
}

}  // namespace
}  // namespace tallowcrest
