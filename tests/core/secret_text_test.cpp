#include "core/secret_text.h"

#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

static_assert(!std::is_copy_constructible_v<SecretText> && !std::is_copy_assignable_v<SecretText>);

TEST(SecretTextTest, WipingOverwritesEveryByte) {
    std::string memory = "before key after";
    wipe({memory.data() + 7, 3});
    EXPECT_EQ(memory, std::string("before \0\0\0 after", 16));
    wipe({memory.data(), 0});
    EXPECT_EQ(memory.front(), 'b');
}

TEST(SecretTextTest, KeepsAnyBytes) {
    const std::string bytes("a\0\xFF\n", 4);
    EXPECT_EQ(SecretText(bytes).view(), bytes);
    EXPECT_TRUE(SecretText().isEmpty());
    EXPECT_TRUE(SecretText("").isEmpty());
    EXPECT_EQ(SecretText().view(), "");
}

TEST(SecretTextTest, MovingLeavesTheBytesWhereTheyAre) {
    SecretText first("short");
    const char* const place = first.view().data();
    SecretText second(std::move(first));
    EXPECT_EQ(second.view().data(), place);
    SecretText third("another");
    third = std::move(second);
    EXPECT_EQ(third.view().data(), place);
    EXPECT_EQ(third.view(), "short");
}

}  // namespace
}  // namespace tallowcrest
