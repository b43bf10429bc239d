#include "remote/remote_script.h"

#include <cstdint>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

/// The 64-bit FNV-1a hash.
std::uint64_t digest(std::string_view text) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    }
    return hash;
}

TEST(RemoteScript, TheOneForMacsIsUnchangedByteForByte) {
    EXPECT_EQ(macSampleScript().size(), 773U);
    EXPECT_EQ(digest(macSampleScript()), 0x248c4158fcd286fdU);
}

TEST(RemoteScript, TheOneForLinuxMeansTheSameToEveryLoginShell) {
    // In quotes, fish takes a doubled backslash and one before a quote for an escape.
    EXPECT_THAT(std::string(linuxSampleScript()), Not(HasSubstr(R"(\\)")));
    EXPECT_THAT(std::string(linuxSampleScript()), Not(HasSubstr(R"(\')")));
    EXPECT_FALSE(linuxSampleScript().ends_with('\\'));
    EXPECT_TRUE(linuxSampleCommand().starts_with("sh -c '"));
    EXPECT_TRUE(linuxSampleCommand().ends_with("'"));
}

}  // namespace
}  // namespace tallowcrest
