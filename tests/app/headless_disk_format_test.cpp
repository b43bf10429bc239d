#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "app/headless_format.h"

namespace tallowcrest {
namespace {

using nlohmann::json;

TEST(HeadlessDiskFormat, AnAreaIsOneLineAndTheRemainderHasAnother) {
    EXPECT_EQ(storageRow({"Programs", "/usr", 1610612736}),
              "      1.50 GB  Programs                          /usr\n");
    EXPECT_EQ(storageRow({std::string(40, 'x'), "/", 0}),
              "      0.00 GB  " + std::string(32, 'x') + "  /\n");
    EXPECT_EQ(storageRow({"Other", "/", 0, "What no area holds."}),
              "      0.00 GB  Other                             /\n"
              "               What no area holds.\n");
    EXPECT_EQ(storageRow({"Caches", "/a\n\x1b[2J\xff", 0}).find_first_of("\x1b\xff"),
              std::string::npos);
}

TEST(HeadlessDiskFormat, AnAreaAsJSONHasItsMembersAndIsASCII) {
    const std::string line = storageJSON({"Filme \xc3\xbc", "/a\n\xff", 12});
    EXPECT_EQ(line,
              "{\"name\":\"Filme \\u00fc\",\"path\":\"/a\\n\\ufffd\",\"bytes\":12,"
              "\"explanation\":\"\"}\n");
}

TEST(HeadlessDiskFormat, ALargeFileIsTwoLinesOrOneObject) {
    const StorageOptimizationSuggestion file{.title = "film.mov",
                                             .detail = "~/Videos",
                                             .path = "/home/owner/Videos/film.mov",
                                             .bytes = 3221225472,
                                             .recommendation = "Back up or archive",
                                             .reason = "This is large."};
    EXPECT_EQ(largeFileRow(file),
              "      3.00 GB  /home/owner/Videos/film.mov\n"
              "               Back up or archive: This is large.\n");
    const json object = json::parse(largeFileJSON(file));
    EXPECT_EQ(object.size(), 6U);
    EXPECT_EQ(object.at("title"), "film.mov");
    EXPECT_EQ(object.at("detail"), "~/Videos");
    EXPECT_EQ(object.at("path"), file.path);
    EXPECT_EQ(object.at("bytes"), 3221225472);
    EXPECT_EQ(object.at("recommendation"), "Back up or archive");
    EXPECT_EQ(object.at("reason"), "This is large.");
}

}  // namespace
}  // namespace tallowcrest
