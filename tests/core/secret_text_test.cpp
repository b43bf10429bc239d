#include "core/secret_text.h"

#include <sys/resource.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <type_traits>
#include <utility>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace tallowcrest {
namespace {

using ::testing::HasSubstr;

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

TEST(SecretTextTest, IsEditedByCharacters) {
    SecretText text;
    const auto edit = [&text](std::size_t first, std::size_t removed, std::string_view inserted) {
        text = text.replacing(first, removed, inserted);
        return std::string(text.view());
    };
    EXPECT_EQ(edit(0, 0, "sk-c"), "sk-c");
    EXPECT_EQ(edit(3, 0, "\u00e4\U0001F511"), "sk-\u00e4\U0001F511c");
    EXPECT_EQ(text.characterCount(), 6U);
    EXPECT_EQ(edit(4, 1, ""), "sk-\u00e4c");
    EXPECT_EQ(edit(3, 1, "b"), "sk-bc");
    EXPECT_EQ(edit(99, 1, "d"), "sk-bcd") << "a place beyond the end";
    EXPECT_EQ(edit(2, 99, ""), "sk");
    EXPECT_EQ(edit(0, 2, ""), "");
    EXPECT_EQ(text.characterCount(), 0U);
}

#ifdef __linux__

/// The flags that the kernel shows for the pages at an address: "rd wr mr mw me lo ac dd".
std::string pageFlags(const void* address) {
    const std::string wanted = fmt::format("{:x}-", reinterpret_cast<std::uintptr_t>(address));
    std::ifstream maps("/proc/self/smaps");
    bool isThere = false;
    for (std::string line; std::getline(maps, line);) {
        isThere = isThere || line.starts_with(wanted);
        if (isThere && line.starts_with("VmFlags:")) {
            return line;
        }
    }
    return {};
}

TEST(SecretTextTest, HasPagesThatAreNeitherDumpedNorSwapped) {
    const SecretText text("secret");
    EXPECT_THAT(pageFlags(text.view().data()), HasSubstr(" dd"));
#ifndef __SANITIZE_ADDRESS__  // which lets no memory be locked
    EXPECT_THAT(pageFlags(text.view().data()), HasSubstr(" lo"));
#endif
}

TEST(SecretTextTest, IsKeptWithoutALockWhereNoMemoryMayBeLocked) {
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_MEMLOCK, &limit), 0);
    const rlimit none{0, limit.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_MEMLOCK, &none), 0);
    const SecretText text(std::string(10'000, 's'));
    ::setrlimit(RLIMIT_MEMLOCK, &limit);
    EXPECT_EQ(text.view(), std::string(10'000, 's'));
    EXPECT_THAT(pageFlags(text.view().data()), HasSubstr(" dd"));
}

#endif

}  // namespace
}  // namespace tallowcrest
