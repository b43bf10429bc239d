#include "disk/storage_ranking.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "disk/storage_areas.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int64_t gigabyte = 1073741824;

MeasuredArea area(const std::string& path, std::int64_t bytes, std::optional<Volume> volume = {}) {
    return {{"area " + path, path, bytes}, path, volume};
}

UsedSpace used(double totalGB, double freeGB, std::optional<Volume> volume = {}) {
    return {{totalGB, freeGB}, volume, "data"};
}

/// "path bytes" of each row.
std::vector<std::string> ranked(std::vector<MeasuredArea> areas,
                                const std::optional<UsedSpace>& space) {
    std::vector<std::string> result;
    for (const DiskStorageOffender& row : rankedOffenders(std::move(areas), space)) {
        result.push_back(row.path + ' ' + std::to_string(row.bytes));
    }
    return result;
}

TEST(StorageRanking, TheFirstPartOfTheOutputIsTheTotalInKilobytes) {
    struct Row {
        std::string output;
        std::optional<std::int64_t> bytes;
    };
    const Row rows[] = {
        {"1234\t/usr\n", 1234 * 1024},
        {"0\t/usr\n", 0},
        {"  \t 7 /a b\n", 7 * 1024},
        {"7", 7 * 1024},
        {"1125899906842624\t/", std::int64_t{1} << 60},
        {"1125899906842625\t/", std::nullopt},
        {"9223372036854775807\t/", std::nullopt},
        {"9223372036854775808\t/", std::nullopt},
        {"-1\t/usr\n", std::nullopt},
        {"12K\t/usr\n", std::nullopt},
        {"1.5\t/usr\n", std::nullopt},
        {"du: cannot read\n12\t/usr\n", std::nullopt},
        {"\n12\t/usr\n", std::nullopt},
        {"12\n", std::nullopt},
        {" \t ", std::nullopt},
        {"", std::nullopt},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(parseDiskUsage(row.output), row.bytes) << row.output;
    }
}

TEST(StorageRanking, TheLargestAreaComesFirst) {
    EXPECT_THAT(ranked({area("/b", 5), area("/c", 9), area("/a", 5)}, {}),
                ElementsAre("/c 9", "/a 5", "/b 5"));
    EXPECT_THAT(ranked({}, {}), IsEmpty());
}

TEST(StorageRanking, TheRemainderIsARowAboveOneGigabyte) {
    EXPECT_THAT(ranked({area("/a", 3 * gigabyte)}, used(10, 6)), ElementsAre("/a 3221225472"));
    EXPECT_THAT(ranked({area("/a", 3 * gigabyte - 1)}, used(10, 6)),
                ElementsAre("/a 3221225471", "/ 1073741825"));
    EXPECT_THAT(ranked({area("/a", gigabyte)}, used(10, 2)),
                ElementsAre("/ 7516192768", "/a 1073741824"));
    const auto rows = rankedOffenders({}, used(10, 2));
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].name, "Other / inaccessible data");
    EXPECT_EQ(rows[0].explanation,
              "Used space that is in none of the measured areas: folders outside them, areas that "
              "took longer than a minute to measure, other accounts, snapshots, what the system "
              "reserves, and other data that this account may not read.");
    EXPECT_EQ(rankedOffenders({area("/", gigabyte)}, {})[0].explanation, "")
        << "an area, wherever it is";
}

TEST(StorageRanking, FiguresThatContradictGiveNoRemainder) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THAT(ranked({area("/a", 1)}, used(10, 60)), ElementsAre("/a 1"));
    EXPECT_THAT(ranked({area("/a", 20 * gigabyte)}, used(10, 1)), ElementsAre("/a 21474836480"));
    EXPECT_THAT(ranked({area("/a", 1)}, used(nan, 1)), ElementsAre("/a 1"));
    EXPECT_THAT(ranked({area("/a", 1)}, used(0, infinity)), ElementsAre("/a 1"));
    EXPECT_THAT(ranked({}, used(infinity, 0)), ElementsAre("/ 1152921504606846976"));
}

TEST(StorageRanking, AnAreaInsideAnotherIsCountedOnce) {
    EXPECT_THAT(
        ranked({area("/var", 10), area("/var/lib/docker", 4), area("/var/lib/docker/volumes", 3),
                area("/variable", 2)},
               {}),
        ElementsAre("/var 6", "/var/lib/docker/volumes 3", "/variable 2", "/var/lib/docker 1"));
    // The inner one was measured later and has grown.
    EXPECT_THAT(ranked({area("/a", 3), area("/a/b", 9)}, {}), ElementsAre("/a/b 9", "/a 0"));
    EXPECT_THAT(ranked({area("/a", 5 * gigabyte), area("/a/b", 2 * gigabyte)}, used(10, 3)),
                ElementsAre("/a 3221225472", "/ 2147483648", "/a/b 2147483648"));
}

TEST(StorageRanking, AnAreaOfAnotherDeviceIsNotPartOfTheUsedSpace) {
    // It is not in the figure of the area around it either.
    const Volume disk{1, 1};
    EXPECT_THAT(ranked({area("/var", 3 * gigabyte, disk),
                        area("/var/lib/docker", 9 * gigabyte, Volume{2, 2})},
                       used(10, 5, disk)),
                ElementsAre("/var/lib/docker 9663676416", "/var 3221225472", "/ 2147483648"));
}

TEST(StorageRanking, SubvolumesArePartOfTheUsedSpaceOfTheirFileSystem) {
    // The figure of the area around one does not contain it.
    EXPECT_THAT(ranked({area("/home/o/.cache", 2 * gigabyte, Volume{42, 39}),
                        area("/home/o", 3 * gigabyte, Volume{41, 39})},
                       used(10, 3, Volume{41, 39})),
                ElementsAre("/home/o 3221225472", "/ 2147483648", "/home/o/.cache 2147483648"));
}

TEST(StorageRanking, LinkedAreasAreCountedOnceWhereTheyLead) {
    MeasuredArea pictures = area("/home/o/Pictures", 5);
    pictures.place = "/var/pictures";
    MeasuredArea videos = area("/home/o/Videos", 5);
    videos.place = "/var/pictures";
    EXPECT_THAT(ranked({area("/var", 9), videos, pictures}, {}),
                ElementsAre("/home/o/Pictures 5", "/var 4"));
}

TEST(StorageRanking, PersonalFoldersInsideOneAnotherAddUp) {
    UserFolders folders;
    folders.home = "/home/o";
    folders.documents = "/home/o/Documents";
    folders.videos = "/home/o/Documents/link/Vids";
    folders.pictures = "/home/o/Documents/.pics";
    std::vector<MeasuredArea> measured;
    for (const StorageArea& each : linuxStorageAreas(folders)) {
        if (each.folder == "/home/o/Documents") {
            measured.push_back(area(each.folder, 6 * gigabyte));
        } else if (each.folder == "/home/o/Documents/link/Vids") {
            measured.push_back(area(each.folder, 5 * gigabyte));
            measured.back().place = "/home/o/real/Vids";
        } else if (each.folder == "/home/o/Documents/.pics") {
            measured.push_back(area(each.folder, 4 * gigabyte));
        }
    }
    EXPECT_THAT(
        ranked(measured, used(20, 6)),
        ElementsAre("/home/o/Documents/link/Vids 5368709120", "/home/o/Documents/.pics 4294967296",
                    "/ 3221225472", "/home/o/Documents 2147483648"));
}

TEST(StorageRanking, TheTextsTellTheLargestAndTheCount) {
    EXPECT_EQ(storage_texts::complete({}),
              "Storage scan found no readable folders. Check Full Disk Access.");
    EXPECT_EQ(storage_texts::complete({{"Music", "/m", gigabyte + gigabyte / 2}}),
              "Storage scan complete. Largest: Music at 1.5 GB.");
    EXPECT_EQ(storage_texts::completeEvent(0, "APFS data"),
              "Ranked 0 volume and user storage areas. Unreadable APFS data is shown as a "
              "remainder; no files were changed.");
    EXPECT_EQ(storage_texts::stopped(3, 19), "Storage scan stopped after 3 of 19 areas.");
    EXPECT_EQ(storage_texts::stoppedEvent(2, 3, 19),
              "Ranked 2 storage areas. The scan was stopped after 3 of 19 areas, so there is no "
              "remainder; no files were changed.");
}

}  // namespace
}  // namespace tallowcrest
