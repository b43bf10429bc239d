#include "disk/storage_suggestions.h"

#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

const Date now = Date::fromUnixSeconds(1700000000.0);

StorageOptimizationSuggestion suggestionFor(const std::string& path,
                                            std::optional<double> ageInSeconds,
                                            const std::string& home = "/home/o") {
    FoundFile file{path, 5, {}, {3, 4}};
    if (ageInSeconds) {
        file.modifiedAt = now.unixSeconds() - *ageInSeconds;
    }
    return makeSuggestion(file, now, home);
}

TEST(StorageSuggestions, AnOldInstallerOrArchiveIsForRemoval) {
    constexpr double day = 86400.0;
    struct Row {
        std::string name;
        std::optional<double> age;
        bool isForRemoval;
    };
    const Row rows[] = {
        {"a.zip", 14 * day, true},
        {"a.ZIP", 14 * day, true},
        {"a.zip", 14 * day - 1, false},
        {"a.zip", 13 * day, false},
        {"a.dmg", 400 * day, true},
        {"a.Pkg", 400 * day, true},
        {"a.iso", 400 * day, true},
        {"a.xip", 400 * day, true},
        {"a.b.zip", 400 * day, true},
        {"a.zip.mov", 4000 * day, false},
        {"film.mov", 4000 * day, false},
        {"zip", 400 * day, false},
        {"a.zip.", 400 * day, false},
        {"a.zip", std::nullopt, true},
        {"a.zip", -400 * day, false},
        {"a.zip", std::nan(""), false},
        {"a.zip", std::numeric_limits<double>::infinity(), true},
    };
    for (const Row& row : rows) {
        const auto suggestion = suggestionFor("/home/o/Downloads/" + row.name, row.age);
        EXPECT_EQ(suggestion.recommendation,
                  row.isForRemoval ? "Review for removal" : "Back up or archive")
            << row.name << ' ' << row.age.value_or(-1);
    }
}

TEST(StorageSuggestions, TheReasonTellsTheDays) {
    EXPECT_EQ(suggestionFor("/d/a.zip", 20.9 * 86400).reason,
              "This looks like an installer or archive and has not changed for 20 days.");
    EXPECT_EQ(suggestionFor("/d/a.mov", 20.9 * 86400).reason,
              "This is a large personal file. Back it up before considering removal from this "
              "Mac.");
}

TEST(StorageSuggestions, TheFileIsNamedAndKept) {
    const auto suggestion = suggestionFor("/home/o/Documents/Work/big file.bin", 0.0);
    EXPECT_EQ(suggestion.title, "big file.bin");
    EXPECT_EQ(suggestion.detail, "~/Documents/Work");
    EXPECT_EQ(suggestion.path, "/home/o/Documents/Work/big file.bin");
    EXPECT_EQ(suggestion.bytes, 5);
    EXPECT_EQ(suggestion.identity, (FileIdentity{3, 4}));
    EXPECT_NE(suggestion.id, suggestionFor("/home/o/a", 0.0).id);
}

TEST(StorageSuggestions, EachOccurrenceOfTheHomeDirectoryIsATilde) {
    EXPECT_EQ(shownPathInHome("/home/o/x/home/o/y", "/home/o"), "~/x~/y");
    EXPECT_EQ(shownPathInHome("/home/o", "/home/o"), "~");
    EXPECT_EQ(shownPathInHome("/data/x", "/home/o"), "/data/x");
    EXPECT_EQ(shownPathInHome("/data/x", "/"), "/data/x");
    EXPECT_EQ(shownPathInHome("/data/x", ""), "/data/x");
}

TEST(StorageSuggestions, ANameCannotLookLikeALineOfOurs) {
    const auto suggestion = suggestionFor("/home/o/a\nb/c\x1b[2Kd\xff.zip", 0.0);
    EXPECT_EQ(suggestion.title, "c\uFFFD[2Kd\uFFFD.zip");
    EXPECT_EQ(suggestion.detail, "~/a\uFFFDb");
    EXPECT_EQ(suggestion.path, "/home/o/a\nb/c\x1b[2Kd\xff.zip");
}

TEST(StorageSuggestions, ASecondCopyHasTheTimeInItsName) {
    EXPECT_EQ(backupName("film.mov", now), "film-1700000000.mov");
    EXPECT_EQ(backupName("a.tar.gz", now), "a.tar-1700000000.gz");
    EXPECT_EQ(backupName("film", now), "film-1700000000.");
    EXPECT_EQ(backupName("film.", now), "film-1700000000.");
    EXPECT_EQ(backupName(".hidden", now), ".hidden-1700000000.");
    EXPECT_EQ(backupName("a.b", Date::fromUnixSeconds(12.9)), "a-12.b");
    const std::string ending = "-1700000000.mov";
    EXPECT_EQ(backupName(std::string(236, 'x') + ".mov", now), std::string(236, 'x') + ending);
    EXPECT_EQ(backupName(std::string(251, 'x') + ".mov", now), std::string(240, 'x') + ending);
    EXPECT_EQ(backupName(std::string(239, 'x') + "\u00e9xxxx.mov", now),
              std::string(239, 'x') + ending)
        << "no character is cut in two";
    EXPECT_EQ(backupName("x." + std::string(250, 'y'), now),
              "-1700000000." + std::string(250, 'y'));
}

}  // namespace
}  // namespace tallowcrest
