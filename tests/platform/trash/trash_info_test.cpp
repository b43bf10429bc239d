#include "platform/trash/trash_info.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

std::string lineOf(const std::string& text, const std::string& key) {
    const auto begin = text.find(key + '=') + key.size() + 1;
    return text.substr(begin, text.find('\n', begin) - begin);
}

TEST(TrashInfo, IsAGroupWithAPathAndADate) {
    EXPECT_EQ(trashInfoText("/home/owner/.cache/a", Date::fromUnixSeconds(1'000'000'000), 0),
              "[Trash Info]\nPath=/home/owner/.cache/a\nDeletionDate=2001-09-09T01:46:40\n");
}

TEST(TrashInfo, EncodesAllBytesOfAPathThatMayNotStandForThemselves) {
    struct Case {
        std::string path;
        std::string encoded;
    };
    const std::vector<Case> cases{
        {"/a-b_c.d~e/F9", "/a-b_c.d~e/F9"},
        {"/a b", "/a%20b"},
        {"/100%", "/100%25"},
        {"/a\nPath=/etc/passwd", "/a%0APath%3D/etc/passwd"},
        {"/\r\t", "/%0D%09"},
        {"/\xC3\xA9", "/%C3%A9"},
        {"/\xFF\x80", "/%FF%80"},
        {"/a#b?c&d;e:f@g", "/a%23b%3Fc%26d%3Be%3Af%40g"},
        {"/!*'()[]\"\\", "/%21%2A%27%28%29%5B%5D%22%5C"},
        {"cache/on/a/volume", "cache/on/a/volume"},
        {"", ""},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(lineOf(trashInfoText(each.path, {}, 0), "Path"), each.encoded);
    }
}

TEST(TrashInfo, GivesTheDateInLocalTime) {
    struct Case {
        double unixSeconds;
        std::int64_t utcOffset;
        std::string text;
    };
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const std::vector<Case> cases{
        {0, 0, "1970-01-01T00:00:00"},
        {951782399.999, 0, "2000-02-28T23:59:59"},
        {951782400, 3600, "2000-02-29T01:00:00"},
        {1767225600, -1, "2025-12-31T23:59:59"},
        {1767225600, 5 * 3600 + 2700, "2026-01-01T05:45:00"},
        // The clock of a machine can be anything.
        {-1, 0, "1970-01-01T00:00:00"},
        {1e300, 0, "9999-12-31T23:59:59"},
        {infinite, 0, "9999-12-31T23:59:59"},
        {-infinite, 0, "1970-01-01T00:00:00"},
    };
    for (const Case& each : cases) {
        const Date date = Date::fromUnixSeconds(each.unixSeconds);
        EXPECT_EQ(lineOf(trashInfoText("/a", date, each.utcOffset), "DeletionDate"), each.text);
    }
}

TEST(TrashInfo, FindsThePathInWhatItGives) {
    std::string anyByte = "/";
    for (int byte = 0; byte < 256; ++byte) {
        anyByte += static_cast<char>(byte);
    }
    for (const std::string& path : {std::string("/a"), std::string("a b/c%20"), std::string(),
                                    std::string("/a\nDeletionDate=2026"), anyByte}) {
        for (const double date : {0.0, 951782400.0, 1767225599.0, 253402300799.0}) {
            const std::string text = trashInfoText(path, Date::fromUnixSeconds(date), 0);
            EXPECT_EQ(pathInTrashInfo(text), path);
            for (std::size_t length = 0; length < text.size(); ++length) {
                EXPECT_EQ(pathInTrashInfo(text.substr(0, length)), std::nullopt);
            }
            EXPECT_EQ(pathInTrashInfo(text + '\n'), std::nullopt);
        }
    }
}

TEST(TrashInfo, FindsNoPathInWhatItNeverGives) {
    const auto text = [](const std::string& path, const std::string& date) {
        return "[Trash Info]\nPath=" + path + "\nDeletionDate=" + date + '\n';
    };
    const std::string date = "2026-05-09T06:13:20";
    ASSERT_EQ(pathInTrashInfo(text("/a", date)), "/a");
    for (const std::string& other : {
             "[Trash Info]\nDeletionDate=" + date + "\nPath=/a\n",
             "[Trash Info]\r\nPath=/a\r\nDeletionDate=" + date + "\r\n",
             "# comment\n" + text("/a", date),
             text("/a", date) + "Other=1\n",
             text("/a", date) + text("/a", date),
             text("/a ", date),
             text("/\xC3\xA9", date),
             text("/%c3%a9", date),
             text("/%61", date),
             text("/a%", date),
             text("/a%2", date),
             text("/a%G0", date),
             text("/a%-1", date),
             text("/a", ""),
             text("/a", "now"),
             text("/a", date + "Z"),
             text("/a", "2026-05-09 06:13:20"),
             text("/a", "2026-5-9T6:13:20"),
             text("/a", "2026-02-29T00:00:00"),
             text("/a", "2026-13-01T00:00:00"),
             text("/a", "2026-01-01T24:00:00"),
             text("/a", "2026-01-01T00:60:00"),
             text("/a", "2026-01-01T00:00:60"),
             text("/a", "1969-12-31T23:59:59"),
             text("/a", "12026-01-01T00:00:00"),
         }) {
        EXPECT_EQ(pathInTrashInfo(other), std::nullopt) << other;
    }
}

TEST(TrashInfo, TellsWhatADescriptionDescribes) {
    EXPECT_EQ(describedName(trashInfoName("a")), "a");
    EXPECT_EQ(describedName("a.trashinfo.trashinfo"), "a.trashinfo");
    EXPECT_EQ(describedName(".trashinfo"), "");
    EXPECT_EQ(describedName("a.trashinf"), "");
    EXPECT_EQ(describedName("a.trashinfo~"), "");
    EXPECT_EQ(describedName(""), "");
}

TEST(TrashInfo, CountsNamesThatAreTaken) {
    EXPECT_EQ(nameInTrash("data.bin", 1, 255), "data.bin");
    EXPECT_EQ(nameInTrash("data.bin", 2, 255), "data.bin.2");
    EXPECT_EQ(nameInTrash("data.bin", 18'446'744'073'709'551'615U, 255),
              "data.bin.18446744073709551615");
}

TEST(TrashInfo, CutsANameSoThatTheNameOfItsDescriptionFits) {
    const std::string letters(255, 'a');
    EXPECT_EQ(nameInTrash(letters, 1, 255), std::string(245, 'a'));
    EXPECT_EQ(trashInfoName(nameInTrash(letters, 1, 255)).size(), 255U);
    EXPECT_EQ(trashInfoName(nameInTrash(letters, 1234, 255)).size(), 255U);
    EXPECT_EQ(nameInTrash(std::string(245, 'a'), 1, 255), std::string(245, 'a'));
    EXPECT_EQ(nameInTrash(letters, 1, 143), std::string(133, 'a'));
    EXPECT_EQ(nameInTrash("abc", 7, 1), "a.7");
}

TEST(TrashInfo, DoesNotCutACharacterOfUTF8InTwo) {
    std::string names;
    for (int i = 0; i < 127; ++i) {
        names += "\xC3\xA9";
    }
    EXPECT_EQ(nameInTrash(names, 1, 255), names.substr(0, 244));
    EXPECT_EQ(nameInTrash("\xF0\x9F\x90\x98\xF0\x9F\x90\x98", 1, 17), "\xF0\x9F\x90\x98");
    // Other encodings are cut anywhere.
    EXPECT_EQ(nameInTrash(std::string(255, '\x9F'), 1, 255), std::string(245, '\x9F'));
}

}  // namespace
}  // namespace tallowcrest
