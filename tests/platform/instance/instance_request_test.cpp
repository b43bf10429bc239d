#include "platform/instance/instance_request.h"

#include <string>
#include <variant>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

std::string tokenOf(std::size_t length) {
    return std::string(length, 't');
}

TEST(InstanceRequest, ParsesWhatAStartSends) {
    for (const std::string& token :
         {std::string(), std::string("a"), std::string("gnome-shell/Tallowcrest/12-0-host_TIME99"),
          std::string("token with blanks "), std::string("~!\"'\\$(id)"), tokenOf(1018)}) {
        const std::string text = instanceRequestText({token});
        EXPECT_LE(text.size(), longestInstanceRequest);
        const auto parsed = parseInstanceRequest(text);
        const auto* request = std::get_if<InstanceRequest>(&parsed);
        ASSERT_NE(request, nullptr) << text;
        EXPECT_EQ(request->activationToken, token);
    }
}

TEST(InstanceRequest, OmitsATokenThatCannotBeSent) {
    for (const std::string& token :
         {tokenOf(1019), std::string("two\nlines"), std::string("tab\t"), std::string("\xC3\xA4"),
          std::string("\x7F"), std::string("zero\0", 5)}) {
        EXPECT_EQ(instanceRequestText({token}), "show\n");
    }
}

TEST(InstanceRequest, EveryPrefixOfAValidRequestIsIncomplete) {
    const std::string text = instanceRequestText({"token 1"});
    for (std::size_t length = 0; length < text.size(); ++length) {
        EXPECT_TRUE(
            std::holds_alternative<IncompleteRequest>(parseInstanceRequest(text.substr(0, length))))
            << length;
    }
}

TEST(InstanceRequest, RefusesEverythingElse) {
    for (const std::string& text : {std::string("\n"),
                                    std::string("sho\n"),
                                    std::string("show \n"),
                                    std::string("show\n\n"),
                                    std::string("show\nshow\n"),
                                    std::string("show a\nb"),
                                    std::string("Show\n"),
                                    std::string("shown\n"),
                                    std::string("quit\n"),
                                    std::string(" show\n"),
                                    std::string("show\ttoken\n"),
                                    std::string("show\r\n"),
                                    std::string("show a\tb\n"),
                                    std::string("show \x01"),
                                    std::string("show \xFF\n"),
                                    std::string("show\0\n", 6),
                                    std::string("\0", 1),
                                    "show " + tokenOf(1019),
                                    "show " + tokenOf(1019) + "\n",
                                    tokenOf(100'000),
                                    std::string("GET / HTTP/1.1\r\n")}) {
        EXPECT_TRUE(std::holds_alternative<MalformedRequest>(parseInstanceRequest(text)))
            << testing::PrintToString(text.substr(0, 40));
    }
}

TEST(InstanceRequest, NeverWaitsForMoreThanTheMaximumSize) {
    EXPECT_TRUE(std::holds_alternative<IncompleteRequest>(
        parseInstanceRequest("show " + tokenOf(longestInstanceRequest - 6))));
    EXPECT_TRUE(std::holds_alternative<MalformedRequest>(
        parseInstanceRequest("show " + tokenOf(longestInstanceRequest - 5))));
}

}  // namespace
}  // namespace tallowcrest
