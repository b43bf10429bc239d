#include "core/base64.h"

#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

TEST(Base64, DecodesWhatStandsForBytes) {
    const std::vector<std::pair<std::string, std::string>> table{
        {"", ""},
        {"Zg==", "f"},
        {"Zm8=", "fo"},
        {"Zm9v", "foo"},
        {"Zm9vYg==", "foob"},
        {"Zm9vYmE=", "fooba"},
        {"Zm9vYmFy", "foobar"},
        {"+/+/", "\xFB\xFF\xBF"},
        {"AAAA", std::string(3, '\0')},
    };
    for (const auto& [text, bytes] : table) {
        EXPECT_EQ(decodedBase64(text), bytes) << text;
    }
}

TEST(Base64, RefusesEverythingElse) {
    for (const char* text : {"Z", "Zg", "Zg=", "Zg===", "=Zg=", "====", "Zm9v=", "Zh==", "Zm9=",
                             "Zm9v\n", "Z m9", "-_-_", "Zm9vZg==Zm9v", "Zm9\xC3"}) {
        EXPECT_EQ(decodedBase64(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace tallowcrest
