#include "core/uuid.h"

#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

TEST(UUID, IsAllZerosByDefault) {
    EXPECT_EQ(UUID{}.text(), "00000000-0000-0000-0000-000000000000");
}

TEST(UUID, ReadsTheCanonicalFormInEitherCase) {
    const auto upper = UUID::fromText("0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF");
    const auto mixed = UUID::fromText("0f1e2D3c-4b5A-4978-8695-a4b3c2d1e0fF");
    ASSERT_TRUE(upper);
    EXPECT_EQ(upper, mixed);
    EXPECT_EQ(upper->bytes[0], 0x0F);
    EXPECT_EQ(upper->bytes[5], 0x5A);
    EXPECT_EQ(upper->bytes[15], 0xFF);
    EXPECT_EQ(mixed->text(), "0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF");
}

TEST(UUID, RejectsEverythingElse) {
    for (const char* text :
         {"", "0", "0F1E2D3C4B5A49788695A4B3C2D1E0FF", "0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0F",
          "0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FFF", "0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FG",
          "0F1E2D3C-4B5A-4978-8695_A4B3C2D1E0FF", "0F1E2D3C4-B5A-4978-8695-A4B3C2D1E0FF",
          "{F1E2D3C-4B5A-4978-8695-A4B3C2D1E0F}", " F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF",
          "0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0F-", "------------------------------------"}) {
        EXPECT_FALSE(UUID::fromText(text)) << text;
    }
    EXPECT_FALSE(UUID::fromText(std::string(36, '\0')));
}

TEST(UUID, RandomIdentifiersDifferAndHaveVersionFour) {
    std::set<UUID> seen;
    for (int i = 0; i < 1000; ++i) {
        const UUID id = UUID::random();
        EXPECT_TRUE(seen.insert(id).second);
        const std::string text = id.text();
        EXPECT_EQ(text[14], '4') << text;
        EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos) << text;
        EXPECT_EQ(UUID::fromText(text), id);
    }
}

TEST(UUID, RandomIdentifiersDifferBetweenThreads) {
    std::vector<UUID> ids(8);
    {
        std::vector<std::jthread> threads;
        for (UUID& id : ids) {
            threads.emplace_back([&id] { id = UUID::random(); });
        }
    }
    EXPECT_EQ(std::set<UUID>(ids.begin(), ids.end()).size(), ids.size());
}

}  // namespace
}  // namespace tallowcrest
