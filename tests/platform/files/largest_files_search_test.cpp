#include <sys/stat.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/files/largest_files_search_posix.h"
#include "tests/platform/files/file_tree.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class LargestFilesSearchTest : public testing::Test {
protected:
    std::vector<FoundFile> find(const LargestFilesRequest& request) {
        return search.find(request, [this](SearchProgress now) { progress = std::move(now); }, {});
    }
    std::vector<std::string> namesOf(const LargestFilesRequest& request) {
        return tree.names(find(request));
    }

    FileTree tree;
    SearchProgress progress;
    PosixLargestFilesSearch search{[] {}};
};

TEST_F(LargestFilesSearchTest, TakesTheFilesFromTheMinimumOn) {
    constexpr std::int64_t minimum = 104'857'600;
    tree.file("exactly", minimum);
    tree.file("less", minimum - 1);
    tree.file("a/more", minimum + 1);
    tree.file("a/b/huge", std::int64_t{1} << 40);
    const std::vector<FoundFile> files = find({{tree.path()}, minimum, 30});
    EXPECT_THAT(tree.names(files), ElementsAre("a/b/huge", "a/more", "exactly"));
    EXPECT_EQ(files[0].bytes, std::int64_t{1} << 40);
    EXPECT_TRUE(files[0].modifiedAt);
    EXPECT_NE(files[0].identity, files[1].identity);
    EXPECT_EQ(progress.filesSeen, 4);
}

TEST_F(LargestFilesSearchTest, DropsTheSmallestOfTooManyAndOrdersEqualOnesByPath) {
    std::vector<std::string> expected;
    for (int number = 130; number > 100; --number) {
        const std::string name = std::to_string(number % 7) + '/' + std::to_string(number);
        tree.file(name, number);
        expected.push_back(name);
    }
    tree.file("100", 100);
    EXPECT_EQ(namesOf({{tree.path()}, 100, 30}), expected);

    for (const char* name : {"x/3", "x/1", "w", "y/2"}) {
        tree.file(name, 500);
    }
    EXPECT_THAT(namesOf({{tree.path()}, 500, 3}), ElementsAre("w", "x/1", "x/3"));
}

TEST_F(LargestFilesSearchTest, FindsTheSameWhateverItsThreadsDo) {
    for (int number = 0; number < 500; ++number) {
        tree.file(std::to_string(number % 50) + '/' + std::to_string(number % 13) + '/' +
                      std::to_string(number),
                  1 + number / 3);
    }
    const std::vector<std::string> first = namesOf({{tree.path()}, 1, 200});
    EXPECT_THAT(first, SizeIs(200));
    for (int turn = 0; turn < 20; ++turn) {
        ASSERT_EQ(namesOf({{tree.path()}, 1, 200}), first);
        ASSERT_EQ(progress.filesSeen, 500);
    }
}

TEST_F(LargestFilesSearchTest, PassesOverLinksHiddenFilesAndPackages) {
    tree.file("real", 10);
    tree.file(".hidden", 20);
    tree.file(".folder/file", 20);
    tree.file("Editor.app/data", 20);
    ASSERT_EQ(::chmod(tree.file("program/AppRun", 20).c_str(), 0755), 0);
    tree.link("real", "link");
    tree.link(".", "loop");
    EXPECT_THAT(namesOf({{tree.path()}, 1, 30}), ElementsAre("real"));
}

TEST_F(LargestFilesSearchTest, ListsEachNameOfAHardLinkedFile) {
    std::filesystem::create_hard_link(tree.file("a", 10), tree / "b");
    const std::vector<FoundFile> files = find({{tree.path()}, 1, 30});
    ASSERT_THAT(tree.names(files), ElementsAre("a", "b"));
    EXPECT_EQ(files[0].identity, files[1].identity);
}

TEST_F(LargestFilesSearchTest, SearchesSeveralRootsAndEachFileOnce) {
    tree.file("home/note", 5);
    tree.file("home/Documents/text", 6);
    tree.file("home/Documents/Old/text", 7);
    tree.file("disk/film", 8);
    tree.folder("empty");
    tree.link("../disk", "home/Movies");
    const std::vector<std::string> roots{
        tree / "home/Documents", tree / "home",  tree / "missing",
        tree / "home/note",      tree / "empty", tree / "home/Movies",
        tree / "home/",          "relative",     ""};
    EXPECT_THAT(namesOf({roots, 1, 30}), ElementsAre("home/Movies/film", "home/Documents/Old/text",
                                                     "home/Documents/text", "home/note"));
    EXPECT_THAT(namesOf({{}, 1, 30}), IsEmpty());
    EXPECT_THAT(namesOf({roots, 1, 0}), IsEmpty());
}

TEST_F(LargestFilesSearchTest, SearchesARootInsideAnotherOneThatPassesOverIt) {
    tree.file("Documents/text", 1);
    tree.file("Documents/.pics/photo", 2);
    tree.file("Documents/Editor.app/film", 3);
    tree.file("Documents/plain/note", 4);
    tree.file("real/Vids/clip", 5);
    tree.link("../real", "Documents/link");
    const std::vector<std::string> roots{tree / "Documents", tree / "Documents/.pics",
                                         tree / "Documents/Editor.app", tree / "Documents/plain",
                                         tree / "Documents/link/Vids"};
    EXPECT_THAT(
        namesOf({roots, 1, 30}),
        ElementsAre("Documents/link/Vids/clip", "Documents/plain/note", "Documents/Editor.app/film",
                    "Documents/.pics/photo", "Documents/text"));
    EXPECT_EQ(progress.filesSeen, 5) << "each once";
}

TEST_F(LargestFilesSearchTest, ReportsItsProgressOnTheCallingThread) {
    for (int number = 0; number < 300; ++number) {
        tree.file("folder/" + std::to_string(number));
    }
    std::vector<SearchProgress> reports;
    bool isOnOneThread = true;
    search.find({{tree.path()}, 1, 30},
                [&, thread = std::this_thread::get_id()](SearchProgress now) {
                    isOnOneThread = isOnOneThread && std::this_thread::get_id() == thread;
                    reports.push_back(std::move(now));
                },
                {});
    ASSERT_THAT(reports, testing::Not(IsEmpty()));
    EXPECT_TRUE(isOnOneThread);
    EXPECT_EQ(reports.back().filesSeen, 300);
    EXPECT_EQ(reports.back().folder, tree / "folder");
}

TEST_F(LargestFilesSearchTest, RunsTheSetupOnItsThreads) {
    static thread_local bool isSetUp = false;
    static std::atomic<int> threads = 0;
    threads = 0;
    PosixLargestFilesSearch prepared([] {
        isSetUp = true;
        ++threads;
    });
    prepared.find({{tree.path()}, 1, 30}, [](const SearchProgress&) {}, {});
    EXPECT_GE(threads, 2) << "one opens the root";
    EXPECT_LE(threads, 5);
    EXPECT_FALSE(isSetUp);
}

/// Decides when a root opens, and on which kind of disk it lies.
struct LateRoot {
    static bool isRotational(const std::string& root) {
        if (root == path) {
            const std::lock_guard wait(closed);
            return isOnRotationalDisk;
        }
        return false;
    }
    static void countThread() { ++threads; }

    static inline std::mutex closed;
    static inline std::string path;
    static inline bool isOnRotationalDisk = false;
    static inline std::atomic<int> threads = 0;
};

TEST_F(LargestFilesSearchTest, ARootThatOpensLateIsReadThenAndNothingTwice) {
    tree.file("outer/a", 20);
    tree.file("outer/inner/b", 10);
    for (const char* const late : {"outer", "outer/inner"}) {
        for (const bool isOnRotationalDisk : {false, true}) {
            LateRoot::path = tree / late;
            LateRoot::isOnRotationalDisk = isOnRotationalDisk;
            LateRoot::threads = 0;
            PosixLargestFilesSearch searchWithLateRoot(LateRoot::countThread,
                                                       LateRoot::isRotational);
            std::unique_lock closed(LateRoot::closed);
            SearchProgress latest;
            const std::vector<FoundFile> files = searchWithLateRoot.find(
                {{tree / "outer", tree / "outer/inner"}, 1, 30},
                [&](SearchProgress now) {
                    latest = std::move(now);
                    if (latest.filesSeen > 0 && closed.owns_lock()) {
                        EXPECT_EQ(latest.filesSeen, 1);
                        EXPECT_EQ(latest.folder, LateRoot::path);
                        EXPECT_EQ(LateRoot::threads, 3) << "two for the roots, and one that reads";
                        closed.unlock();
                    }
                },
                {});
            EXPECT_FALSE(closed.owns_lock()) << "the other root was read before";
            EXPECT_THAT(tree.names(files), ElementsAre("outer/a", "outer/inner/b"));
            EXPECT_EQ(latest.filesSeen, 2);
            if (isOnRotationalDisk) {
                EXPECT_EQ(LateRoot::threads, 3);
            }
        }
    }
}

TEST_F(LargestFilesSearchTest, AThreadThatWaitsForALateRootEndsAtAStop) {
    static std::atomic<int> ended = 0;
    struct Thread {
        ~Thread() {
            ++ended;
            ended.notify_all();
        }
    };
    tree.file("late/a");
    tree.file("open/b");
    LateRoot::path = tree / "late";
    LateRoot::isOnRotationalDisk = false;
    PosixLargestFilesSearch searchWithLateRoot([] { static thread_local const Thread thread; },
                                               LateRoot::isRotational);
    const std::lock_guard closed(LateRoot::closed);
    std::stop_source stop;
    searchWithLateRoot.find(
        {{tree / "late", tree / "open"}, 1, 30},
        [&](const SearchProgress& now) {
            if (now.filesSeen == 1) {
                stop.request_stop();
            }
        },
        stop.get_token());
    // That of the open root and the one that reads. Until they have ended, this waits.
    for (int now = ended; now < 2; now = ended) {
        ended.wait(now);
    }
}

TEST_F(LargestFilesSearchTest, OneThreadReadsARotationalDisk) {
    LateRoot::threads = 0;
    PosixLargestFilesSearch rotational(LateRoot::countThread,
                                       [](const std::string&) { return true; });
    rotational.find({{tree.path()}, 1, 30}, [](const SearchProgress&) {}, {});
    EXPECT_EQ(LateRoot::threads, 2) << "one opens the root";
}

TEST_F(LargestFilesSearchTest, DoesNotBeginAfterAStop) {
    tree.file("a", 10);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THAT(search.find(
                    {{tree.path()}, 1, 30}, [](const SearchProgress&) {}, stop.get_token()),
                IsEmpty());
}

TEST_F(LargestFilesSearchTest, AStopDoesNotWaitForAThreadThatHangs) {
    static std::mutex hangs;
    tree.file("a", 10);
    std::stop_source stop;
    const std::lock_guard guard(hangs);
    PosixLargestFilesSearch hanging([] { const std::lock_guard wait(hangs); });
    int reports = 0;
    const std::vector<FoundFile> files = hanging.find(
        {{tree.path()}, 1, 30},
        [&](const SearchProgress& now) {
            EXPECT_EQ(now.filesSeen, 0);
            if (++reports == 2) {
                stop.request_stop();
            }
        },
        stop.get_token());
    EXPECT_THAT(files, IsEmpty());
    EXPECT_GE(reports, 2);
}

}  // namespace
}  // namespace tallowcrest
