// What the program without a window tells of the disk.

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/app/headless_program.h"
#include "tests/app/own_disk_places.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using ::testing::HasSubstr;

/// Measuring the system's own folders may take as long as its deadlines.
ProgramResult runLong(const std::vector<std::string>& arguments) {
    constexpr int deadlineSeconds = 900;
    return runProgram(
        {.path = program, .arguments = arguments, .withoutVariables = hiddenVariables},
        deadlineSeconds);
}

TEST(HeadlessDisk, MeasuresTheAreasOfTheDisk) {
    const OwnDiskPlaces places;
    std::ofstream(places.downloads() / "file") << std::string(5 << 20, 'x');
    const ProgramResult result = runLong({"--headless", "--storage", "--json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardError, "");
    std::int64_t before = INT64_MAX;
    std::int64_t downloads = 0;
    for (const std::string& line : linesOf(result.standardOutput)) {
        const json row = json::parse(line);
        const auto bytes = row.at("bytes").get<std::int64_t>();
        EXPECT_LE(bytes, before) << "largest first";
        before = bytes;
        EXPECT_EQ(row.at("explanation") != "", row.at("path") == "/")
            << "the remainder alone is no folder: " << line;
        if (row.at("name") == "Downloads") {
            EXPECT_EQ(row.at("path"), places.downloads().string());
            downloads = bytes;
        }
    }
    EXPECT_GE(downloads, 5 << 20);
    EXPECT_LT(downloads, 6 << 20);
}

TEST(HeadlessDisk, ListsLargeFilesAndChangesNothing) {
    const OwnDiskPlaces places;
    const fs::path archive = places.downloads() / "old\n.ISO";
    std::ofstream(archive) << "x";
    fs::resize_file(archive, 300 << 20);
    fs::last_write_time(archive, fs::file_time_type::clock::now() - std::chrono::hours(24 * 20));
    const fs::path film = places.downloads() / "film.mov";
    std::ofstream(film) << "x";
    fs::resize_file(film, 200 << 20);
    const ProgramResult text = run({"--headless", "--large-files"});
    EXPECT_EQ(text.status, 0);
    EXPECT_EQ(text.standardError, "");
    const auto lines = linesOf(text.standardOutput);
    ASSERT_EQ(lines.size(), 4U) << text.standardOutput;
    EXPECT_THAT(lines[0], HasSubstr("0.29 GB  " + places.downloads().string() + "/old"));
    EXPECT_THAT(lines[1], HasSubstr("Review for removal: This looks like an installer or archive "
                                    "and has not changed for 20 days."));
    EXPECT_THAT(lines[2], HasSubstr("0.20 GB  " + film.string()));
    const ProgramResult objects = run({"--headless", "--large-files", "--json"});
    EXPECT_EQ(objects.status, 0);
    const auto rows = linesOf(objects.standardOutput);
    ASSERT_EQ(rows.size(), 2U) << objects.standardOutput;
    EXPECT_EQ(json::parse(rows[0]).at("path"), archive.string());
    EXPECT_EQ(json::parse(rows[1]).at("bytes"), 200 << 20);
    EXPECT_EQ(json::parse(rows[1]).at("recommendation"), "Back up or archive");
    EXPECT_FALSE(fs::exists(places.trash()));
    EXPECT_FALSE(fs::exists(places.trash().parent_path() / "tallowcrest"));
}

TEST(HeadlessDisk, WithoutLargeFilesSaysSo) {
    const OwnDiskPlaces places;
    const ProgramResult result = run({"--headless", "--large-files"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardOutput, "");
    EXPECT_EQ(result.standardError,
              "tallowcrest: No accessible personal files larger than 100 MB were found.\n");
}

}  // namespace
}  // namespace tallowcrest
